"""vardel-replay: the document it prints. Other programs read it, so whole documents are compared."""

import json
import os
import sys
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path[:0] = [os.path.join(ROOT, "tests", "support"), os.path.join(ROOT, "tools", "demo_lan")]

from capture_files import START, arp, ethernet, syslog, udp
from lan_frames import browse_announcement, netbios_datagram
from replay_case import NO_VENDOR, ReplayTest, document, host, listed_host, local_host, new_host_event, registry_text


class DocumentTest(ReplayTest):
    def test_a_savefile_without_frames_gives_an_empty_document(self):
        self.assertEqual(self.replay(self.capture()), document())

    def test_a_new_host_is_in_the_table_the_new_entries_and_the_events(self):
        self.assertEqual(self.replay(self.capture(arp("10.0.0.5", "00:1B:c5:00:00:0a"))), document(
            frames={"read": 1, "arp": 1, "ip": 0},
            hosts=[host("10.0.0.5", "00:1b:c5:00:00:0a")],
            newEntries=["10.0.0.5"],
            events=[new_host_event("10.0.0.5")]))

    def test_a_known_host_is_refreshed_with_the_time_of_its_last_frame(self):
        self.assertEqual(self.replay(self.capture(arp("10.0.0.5"), (START + 3661, arp("10.0.0.5")))), document(
            frames={"read": 2, "arp": 2, "ip": 0},
            hosts=[host("10.0.0.5", lastSeen=START + 3661, lastSeenText="23:14:21", rowDirty=1)],
            newEntries=["10.0.0.5"],
            events=[new_host_event("10.0.0.5")]))

    def test_members_stand_in_a_fixed_order(self):
        done = self.run_program(self.capture(arp("10.0.0.5")))
        told = json.loads(done.stdout)
        self.assertEqual(list(told), [*document(), "handlerSeconds"])
        self.assertEqual(list(told["frames"]), ["read", "arp", "ip"])
        self.assertEqual(list(told["hosts"][0]), list(host("")))
        self.assertEqual(list(told["events"][0]), ["kind", "host", "info", "text", "syslogInfo"])

    def test_hosts_are_sorted_by_address_as_a_number(self):
        addresses = ["10.0.0.10", "9.255.0.1", "10.0.0.9", "192.168.0.1", "10.0.0.100"]
        told = self.replay(self.capture(*map(arp, addresses)))
        self.assertEqual([entry["ip"] for entry in told["hosts"]],
                         ["9.255.0.1", "10.0.0.9", "10.0.0.10", "10.0.0.100", "192.168.0.1"])
        self.assertEqual(told["newEntries"], addresses)

    def test_every_frame_of_a_second_mac_is_a_spoof_entry_oldest_first(self):
        other = "02:00:00:00:00:99"
        told = self.replay(self.capture(arp("10.0.0.5"), arp("10.0.0.6"), arp("10.0.0.6", other),
                                        arp("10.0.0.5", other), arp("10.0.0.5"), arp("10.0.0.6", other)))
        self.assertEqual(told["macSpoofs"], ["10.0.0.6", "10.0.0.5", "10.0.0.6"])
        self.assertEqual([entry["mac"] for entry in told["hosts"]], ["02:00:00:00:00:01"] * 2)

    def test_frames_that_the_capture_filter_refuses_are_read_and_not_handed_on(self):
        tagged = ethernet(0x8100, b"\0\1" + arp("10.0.0.7")[12:])
        told = self.replay(self.capture(arp("10.0.0.5"), ethernet(0x86DD, bytes(46)), tagged, b"", b"\xff" * 13,
                                        arp("10.0.0.6", ether_type=0x8035), udp("10.0.0.5", 1, 2, b"")))
        self.assertEqual(told["frames"], {"read": 7, "arp": 2, "ip": 1})
        self.assertEqual([entry["ip"] for entry in told["hosts"]], ["10.0.0.5", "10.0.0.6"])

    def test_a_browse_announcement_tells_name_and_operating_system(self):
        block = browse_announcement(1, "FILESERVER", 6, 1, 0x8003)
        datagram = netbios_datagram("02:00:00:00:00:01", "10.0.0.5", "10.0.0.255", "FILESERVER", "WORKGROUP", block)
        told = self.replay(self.capture(arp("10.0.0.5"), datagram))
        self.assertEqual(told["frames"], {"read": 2, "arp": 1, "ip": 1})
        self.assertEqual(told["hosts"], [host("10.0.0.5", hostName="fileserver", nameUnresolved=0, osFromBrowse=1,
                                              os="Microsoft Windows Server 2008 R2", osClass=2, rowDirty=0)])

    def test_times_are_told_in_the_zone_of_the_environment(self):
        path = self.capture(arp("10.0.0.5"))
        for zone, text in (("UTC", "22:13:20"), ("UTC-5:30", "03:43:20"), ("UTC+8", "14:13:20")):
            with self.subTest(zone=zone):
                told = self.replay(path, zone=zone)["hosts"][0]
                self.assertEqual((told["lastSeenText"], told["lastSeen"]), (text, START))


class SyslogTest(ReplayTest):
    def settings(self, **values):
        return self.file(registry_text({"Syslog": 1, "SyslogMaxEntries": 0, "SyslogNotification": 0, **values}))

    @staticmethod
    def record(serial, text, severity=5, facility=1, expired=0):
        return {"serial": serial, "severity": severity, "facility": facility, "text": text, "expired": expired}

    def test_messages_are_kept_by_source_with_their_count(self):
        path = self.capture(syslog("10.0.0.10", "<13>one"), syslog("10.0.0.9", "<191>two"),
                            syslog("10.0.0.10", "<0>three"))
        self.assertEqual(self.replay("--settings", self.settings(), path), document(
            frames={"read": 3, "arp": 0, "ip": 3},
            syslogs={"10.0.0.9": {"count": 1, "records": [self.record(1, "two", 7, 23)]},
                     "10.0.0.10": {"count": 2, "records": [self.record(1, "one"), self.record(2, "three", 0, 0)]}}))

    def test_sources_are_sorted_by_address_as_a_number(self):
        path = self.capture(syslog("10.0.0.10", "<13>one"), syslog("10.0.0.9", "<13>two"))
        self.assertEqual(list(self.replay("--settings", self.settings(), path)["syslogs"]), ["10.0.0.9", "10.0.0.10"])

    def test_records_past_the_limit_are_marked_oldest_first(self):
        path = self.capture(*(syslog("10.0.0.9", f"<13>{n}") for n in range(1, 5)))
        self.assertEqual(self.replay("--settings", self.settings(SyslogMaxEntries=2), path)["syslogs"]["10.0.0.9"], {
            "count": 4,
            "records": [self.record(1, "1", expired=1), self.record(2, "2", expired=1), self.record(3, "3"),
                        self.record(4, "4")]})

    def test_without_settings_syslog_is_off(self):
        self.assertEqual(self.replay(self.capture(syslog("10.0.0.9", "<13>one")))["syslogs"], {})

    def test_each_byte_of_a_text_can_be_told_from_the_document(self):
        text = bytes(range(1, 256)).replace(b"\n", b"")  # a line feed at the end would go
        path = self.capture(syslog("10.0.0.9", b"<13>" + text))
        done = self.run_program("--settings", self.settings(), path)
        self.assertEqual(self.parse(done.stdout)["syslogs"]["10.0.0.9"]["records"][0]["text"], text.decode("latin-1"))
        for escape in (rb"\u0001", rb"\u001f", rb"\"", rb"\\", rb"\u007f", rb"\u0080", rb"\u00ff"):
            self.assertIn(escape, done.stdout)

    def test_a_notification_is_an_event_and_an_entry(self):
        settings = self.settings(SyslogNotification=1, SyslogNotificationLevel=3, SyslogNotificationType=0,
                                 SyslogNotificationFacility=4, SyslogNotificationWords="")
        path = self.capture(syslog("10.0.0.9", "<11>level"), syslog("10.0.0.9", "<38>facility"),
                            syslog("10.0.0.9", "<13>neither"))
        told = self.replay("--settings", settings, path)
        self.assertEqual(told["events"], [
            {"kind": 10, "host": "10.0.0.9", "info": "", "text": "level", "syslogInfo": 1 << 16 | 3},
            {"kind": 10, "host": "10.0.0.9", "info": "", "text": "facility", "syslogInfo": 4 << 16 | 6}])
        self.assertEqual(told["syslogNotifications"], [
            {"source": "10.0.0.9", "severity": 3, "facility": 1, "text": "level"},
            {"source": "10.0.0.9", "severity": 6, "facility": 4, "text": "facility"}])
        self.assertEqual(told["syslogs"]["10.0.0.9"]["count"], 3)

    def test_notifications_of_the_other_type_are_events_alone(self):
        settings = self.settings(SyslogNotification=1, SyslogNotificationLevel=7, SyslogNotificationType=1,
                                 SyslogNotificationFacility=0)
        told = self.replay("--settings", settings, self.capture(syslog("10.0.0.9", "<13>one")))
        self.assertEqual((len(told["events"]), told["syslogNotifications"]), (1, []))

    def test_the_words_of_the_settings_are_in_force_from_the_first_frame(self):
        settings = self.settings(SyslogNotification=1, SyslogNotificationLevel=0, SyslogNotificationType=0,
                                 SyslogNotificationFacility=99, SyslogNotificationWords="failed,link down")
        path = self.capture(syslog("10.0.0.9", "<13>login failed"), syslog("10.0.0.9", "<13>Failed"),
                            syslog("10.0.0.9", "<13>eth0: link down"), syslog("10.0.0.9", "<13>link"))
        self.assertEqual([entry["text"] for entry in self.replay("--settings", settings, path)["syslogNotifications"]],
                         ["login failed", "eth0: link down"])


class SettingsTest(ReplayTest):
    def test_hosts_wait_for_inspection_and_share_search_oldest_first(self):
        settings = self.file(registry_text({"UseWMI": 1, "ShareSearch": 1}))
        path = self.capture(arp("10.0.0.5"), arp("10.0.0.6"), arp("10.0.0.5"))
        told = self.replay("--settings", settings, "--local", "10.0.0.1", path)
        self.assertEqual(told["wmiWork"], ["10.0.0.1", "10.0.0.5", "10.0.0.6"])
        self.assertEqual(told["netResWork"], ["10.0.0.1", "10.0.0.5", "10.0.0.6", "10.0.0.5"])
        self.assertEqual(told["newEntries"], ["10.0.0.5", "10.0.0.6"])

    def test_listed_hosts_are_trusted_or_distrusted(self):
        settings = self.file(registry_text({}, {
            "TrustedHosts": [("Host0", listed_host("10.0.0.5")), ("Host1", listed_host("10.0.0.7"))],
            "DistrustedHosts": [("Host0", listed_host("10.0.0.6")), ("Host1", listed_host("10.0.0.7"))]}))
        told = self.replay("--settings", settings, self.capture(*(arp(f"10.0.0.{n}") for n in (5, 6, 7, 8))))
        self.assertEqual([entry["trustState"] for entry in told["hosts"]], [1, 2, 2, 0])

    def test_a_registry_export_in_utf_16_is_read_as_well(self):
        text = registry_text({"UseWMI": 1}).replace("REGEDIT4", "Windows Registry Editor Version 5.00")
        settings = self.file(b"\xff\xfe" + text.encode("utf-16-le"))
        self.assertEqual(self.replay("--settings", settings, self.capture(arp("10.0.0.5")))["wmiWork"], ["10.0.0.5"])

    def test_a_damaged_line_is_reported_and_the_others_count(self):
        settings = self.file(registry_text({"UseWMI": 1}) + '"ShareSearch"=dword:zz\r\n')
        done = self.run_program("--settings", settings, self.capture(arp("10.0.0.5")))
        self.assertEqual(done.returncode, 0)
        self.assertEqual(self.parse(done.stdout)["wmiWork"], ["10.0.0.5"])
        self.assertEqual(done.stderr.decode(), f"vardel-replay: {settings}: line 5 is no registry text\n")

    def test_a_missing_settings_file_ends_the_run(self):
        self.assertIn("no-such-file", self.fails(1, "--settings", os.path.join(self.folder, "no-such-file"),
                                                 self.capture()))

    def test_a_file_that_is_no_registry_text_ends_the_run(self):
        self.assertIn("line 1", self.fails(1, "--settings", self.file("something else\n"), self.capture()))


class LocalAndVendorTest(ReplayTest):
    VENDORS = "02:00:00\tExample Networks \t02-00-00\n0:1b:2\tOther Cards\n"

    def test_local_records_are_trusted_and_never_new(self):
        told = self.replay("--local", "10.0.0.1=02:00:00:AB:CD:ef", "--local", "10.0.0.2", self.capture())
        self.assertEqual(told, document(hosts=[local_host("10.0.0.1", "02:00:00:ab:cd:ef"), local_host("10.0.0.2")]))

    def test_the_vendor_file_comes_after_the_local_records_and_fills_them_in(self):
        told = self.replay("--vendors", self.file(self.VENDORS), "--local", "10.0.0.1=02:00:00:00:00:09",
                           "--local", "10.0.0.2", self.capture())
        self.assertEqual(told["hosts"], [
            local_host("10.0.0.1", "02:00:00:00:00:09", vendor="Example Networks", vendorUnknown=0),
            local_host("10.0.0.2", vendor=NO_VENDOR)])

    def test_hosts_get_their_vendor_from_the_file(self):
        told = self.replay("--vendors", self.file(self.VENDORS), self.capture(
            arp("10.0.0.5", "02:00:00:00:00:05"), arp("10.0.0.6", "00:1b:02:00:00:06"),
            arp("10.0.0.7", "00:1b:03:00:00:07")))
        self.assertEqual([(entry["vendor"], entry["vendorUnknown"]) for entry in told["hosts"]],
                         [("Example Networks", 0), ("Other Cards", 0), (NO_VENDOR, 1)])

    def test_a_local_record_without_mac_takes_the_first_one_seen(self):
        told = self.replay("--local", "10.0.0.1", self.capture(arp("10.0.0.1", "02:00:00:00:00:07")))
        self.assertEqual((told["macSpoofs"], told["newEntries"], told["events"]), ([], [], []))
        self.assertEqual(told["hosts"], [local_host("10.0.0.1", "02:00:00:00:00:07", vendor=NO_VENDOR, rowDirty=1,
                                                    lastSeen=START, lastSeenText="22:13:20")])

    def test_a_local_record_with_a_mac_is_spoofed_by_another_one(self):
        told = self.replay("--local", "10.0.0.1=02:00:00:00:00:01", self.capture(arp("10.0.0.1", "02:00:00:00:00:07")))
        self.assertEqual(told["macSpoofs"], ["10.0.0.1"])
        self.assertEqual(told["hosts"][0]["mac"], "02:00:00:00:00:01")

    def test_a_missing_vendor_file_ends_the_run(self):
        self.assertIn("no-such-file", self.fails(1, "--vendors", os.path.join(self.folder, "no-such-file"),
                                                 self.capture()))


if __name__ == "__main__":
    unittest.main()
