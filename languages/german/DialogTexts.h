// The German texts of the templates and the menu, as DialogTexts_en.h has the English ones. In UTF-8.
#pragma once

// Buttons of several dialogs
#define TX_OK "OK"
#define TX_CANCEL "Abbrechen"
#define TX_CLOSE "Schließen"
#define TX_BROWSE "..."

// Host view
#define TX_HOST_VIEW_TITLE "Vardelwatch - Ansicht"
#define TX_HOST_VIEW_LIST "Bekannte Hosts"
#define TX_HOST_VIEW_COUNT "Bekannte Hosts:"
#define TX_HOST_VIEW_AUTO_REFRESH "Automatisch aktualisieren"
#define TX_HOST_VIEW_UPDATES "Änderungen verfügbar!"
#define TX_HOST_VIEW_REFRESH "Aktualisieren"

// Event log, syslog, network resources
#define TX_EVENT_LOG_TITLE "Vardelwatch - Ereignisprotokoll"
#define TX_EVENT_LOG_LIST "Ereignisse"
#define TX_SYSLOG_TITLE "Vardelwatch - SysLog"
#define TX_SYSLOG_LIST "Syslog-Meldungen"
#define TX_RESOURCES_TITLE "Vardelwatch - Ressourcen"
#define TX_RESOURCES_TREE "Hosts und ihre Freigaben"

// About box; %s takes the version
#define TX_ABOUT_TITLE "Über Vardelwatch"
#define TX_ABOUT_VERSION "Version %s"
#define TX_ABOUT_PURPOSE "Beobachtet das lokale Netzwerk und zeigt, wer sich darin befindet."
#define TX_ABOUT_CAPTURE_LIBRARY "Erfassungsbibliothek:"

// Updates
#define TX_UPDATES_TITLE "Vardelwatch - Updates"
#define TX_UPDATES_INSTALLED "Installiert"
#define TX_UPDATES_OFFERED "Verfügbar"
#define TX_UPDATES_PROGRAM_NAME "Vardelwatch:"
#define TX_UPDATES_LIST_NAME "Liste der MAC-Adressen:"
#define TX_UPDATES_LIST "&Liste der MAC-Adressen aktualisieren"
#define TX_UPDATES_PROGRAM "Vardelwatch aktualisieren"
#define TX_UPDATES_FILES "Datei(en):"
#define TX_UPDATES_KILOBYTES "KB geladen:"
#define TX_UPDATES_WEBSITE "&Website öffnen"
#define TX_UPDATES_START "&Aktualisieren"

// Settings dialog
#define TX_SETTINGS_TITLE "Vardelwatch - Einstellungen"
#define TX_SETTINGS_TREE "Seiten"
#define TX_SETTINGS_SAVE "&Speichern"
#define TX_SETTINGS_SAVE_AND_EXIT "Speichern &und beenden"
#define TX_SETTINGS_HELP "&Hilfe"

// Page General
#define TX_GENERAL_GROUP_START "Start"
#define TX_GENERAL_AUTO_START "&Mit Windows® starten"
#define TX_GENERAL_AUTO_CAPTURE "&IP-Erkennung sofort starten "
#define TX_GENERAL_GROUP_DETECTION "Erkennung"
#define TX_GENERAL_DELETE_ARP_CACHE "&ARP-Cache regelmäßig leeren"
#define TX_GENERAL_USE_WMI "Mit &WMI mehr Informationen über entfernte Hosts ermitteln"
#define TX_GENERAL_SHARE_SEARCH "Alle &Freigaben sichtbarer entfernter Hosts suchen"
#define TX_GENERAL_GROUP_UPDATES "Updates"
#define TX_GENERAL_UPDATE_CHECK "&Regelmäßig nach Updates suchen"

// Page Interface
#define TX_INTERFACE_ADAPTERS "&Netzwerkschnittstelle:"
#define TX_INTERFACE_GROUP_DETAILS "Gewählte Schnittstelle"
#define TX_INTERFACE_DESCRIPTION "Beschreibung:"
#define TX_INTERFACE_IP "IP-Adresse:"
#define TX_INTERFACE_NET_MASK "Netzmaske:"
#define TX_INTERFACE_HOST_NAME "Hostname:"
#define TX_INTERFACE_MAC "MAC-Adresse:"
#define TX_INTERFACE_GROUP_SYSTEM "Dieser Computer"
#define TX_INTERFACE_OS_VERSION "Betriebssystem:"

// Pages Notification - part 1 and 2
#define TX_NOTIFY_GROUP_NEW_HOST "Neue Hosts"
#define TX_NOTIFY_NEW_HOST "Neue Hos&ts anzeigen"
#define TX_NOTIFY_NEW_HOST_BALLOON "Sp&rechblase"
#define TX_NOTIFY_NEW_HOST_WINDOW "&Eigenes Fenster"
#define TX_NOTIFY_TRUSTED "&Keine Benachrichtigung bei vertrauten Hosts"
#define TX_NOTIFY_GROUP_ACCESS "Fernzugriff"
#define TX_NOTIFY_ACCESS "Fernzugriffe &anzeigen"
#define TX_NOTIFY_ACCESS_IGNORE_LOCALHOST "&Localhost ignorieren"
#define TX_NOTIFY_ACCESS_IGNORE_TRUSTED "&Vertraute Hosts ignorieren"
#define TX_NOTIFY_ACCESS_IGNORE_IPC "Zugriffe auf $&IPC ohne Benutzernamen ignorieren"
#define TX_NOTIFY_ACCESS_BALLOON "Spre&chblase"
#define TX_NOTIFY_ACCESS_WINDOW "Eigenes &Fenster"
#define TX_NOTIFY_GROUP_SHARE "Neue Freigaben"
#define TX_NOTIFY_SHARE "Neue Freigaben an&zeigen"
#define TX_NOTIFY_SHARE_BALLOON "Sprech&blase"
#define TX_NOTIFY_SHARE_WINDOW "Eige&nes Fenster"
#define TX_NOTIFY_GROUP_MAC_SPOOFING "MAC-Spoofing"
#define TX_NOTIFY_MAC_SPOOFING "&Warnung bei gefälschten MAC-Adressen"
#define TX_NOTIFY_MAC_SPOOFING_BALLOON "Sp&rechblase"
#define TX_NOTIFY_MAC_SPOOFING_WINDOW "&Eigenes Fenster"

// Page View
#define TX_VIEW_GROUP_COLUMNS "Sichtbare Spalten"
#define TX_VIEW_MAC "Hardware-&Adresse (MAC)"
#define TX_VIEW_LAST_PACKET "&Letztes Paket"
#define TX_VIEW_HOST_NAME "Hos&tname"
#define TX_VIEW_VENDOR "Hersteller &der Netzwerkkarte"
#define TX_VIEW_INFORMATION "&Weitere Informationen"
#define TX_VIEW_GROUP_ENTRIES "Einträge"
#define TX_VIEW_HIDE_SECURE "&Vertraute Hosts ausblenden"
#define TX_VIEW_GREYED_OUT "&Einträge grau anzeigen, wenn sie älter sind als"
#define TX_VIEW_MINUTES "Minuten"
#define TX_VIEW_OFFLINE_RED "Überwachte Hosts &rot anzeigen, wenn sie offline sind"
#define TX_VIEW_GROUP_WINDOW "Fenster"
#define TX_VIEW_SAVE_WINDOW "&Größe und Position des Fensters speichern"
#define TX_VIEW_SAVE_COLUMN_WIDTH "Spaltenbreiten &für die Sitzung merken"

// Page Hosts
#define TX_HOSTS_TRUSTED "&Vertraute Hosts"
#define TX_HOSTS_DISTRUSTED "&Nicht vertraute Hosts"
#define TX_HOSTS_WATCHED "Ü&berwachte Hosts"
#define TX_HOSTS_ADVANCED "&Erweitert"

// Pages of host lists
#define TX_TRUSTED_LIST "Vertraute Hosts"
#define TX_DISTRUSTED_LIST "Nicht vertraute Hosts"
#define TX_WATCHED_LIST "Überwachte Hosts"
#define TX_LIST_ADD_HOST "Hos&t hinzufügen"
#define TX_LIST_EDIT_HOST "Host &bearbeiten"
#define TX_LIST_DELETE_HOST "Host &löschen"
#define TX_WATCHED_SETTINGS "&Einstellungen"

// Entry of a host
#define TX_HOST_ENTRY_TITLE "Vardelwatch - Host"
#define TX_HOST_ENTRY_IP "&IP-Adresse:"
#define TX_HOST_ENTRY_NAME "&Hostname:"

// Watch settings
#define TX_WATCH_TITLE "Vardelwatch - Überwachung"
#define TX_WATCH_METHOD "&Methode:"
#define TX_WATCH_INTERVAL "&Intervall:"
#define TX_WATCH_SECONDS "Sekunden"
#define TX_WATCH_NOTIFICATION "&Benachrichtigung"
#define TX_WATCH_CONFIRM "&Statusänderungen bestätigen"

// Page Advanced below Hosts
#define TX_NEW_TRUSTED_GROUP "Anwendung für neue vertraute Hosts"
#define TX_NEW_TRUSTED_APPLICATION "&Anwendung:"
#define TX_NEW_TRUSTED_PARAMETERS "&Parameter:"
#define TX_NEW_OTHER_GROUP "Anwendung für neue nicht vertraute oder unbekannte Hosts"
#define TX_NEW_OTHER_APPLICATION "A&nwendung:"
#define TX_NEW_OTHER_PARAMETERS "Pa&rameter:"
#define TX_NEW_OTHER_DISTRUSTED "nur nicht &vertraute Hosts"
#define TX_NEW_OTHER_UNKNOWN "nur un&bekannte Hosts"

// Page Applications
#define TX_APPLICATIONS_LIST "Anwendungen"
#define TX_APPLICATIONS_NEW "&Neu..."
#define TX_APPLICATIONS_CONFIGURE "&Konfiguration"
#define TX_APPLICATIONS_DELETE "&Löschen"

// Entry of an application
#define TX_APPLICATION_ENTRY_TITLE "Vardelwatch - Anwendung"
#define TX_APPLICATION_ENTRY_NAME "&Name der Anwendung:"
#define TX_APPLICATION_ENTRY_EXECUTABLE "&Programmdatei:"
#define TX_APPLICATION_ENTRY_PARAMETERS "Parameter &der Anwendung:"
#define TX_TAGS_GROUP "Platzhalter für die Parameter"
#define TX_TAG_IP "IP-Adresse des Hosts"
#define TX_TAG_HOST "Name des Hosts"
#define TX_TAG_MAC "MAC-Adresse des Hosts"
#define TX_TAG_LOCAL_IP "Lokale IP-Adresse"
#define TX_TAG_LOCAL_HOST "Lokaler Hostname"
#define TX_TAG_LOCAL_SUBNET "Lokales Subnetz"

// Page Plugins
#define TX_PLUGINS_LIST "Plugins"
#define TX_PLUGINS_RELOAD "&Neu laden"
#define TX_PLUGINS_CONFIGURE "&Konfiguration"
#define TX_PLUGINS_ABOUT "&Info"

// Page Reports
#define TX_REPORTS_GENERATE "&Bericht aus einer Vorlage erzeugen"
#define TX_REPORTS_TEMPLATE "&Vorlage:"
#define TX_REPORTS_PATH "&Ordner für erzeugte Dateien:"
#define TX_REPORTS_INTERVAL "&Intervall"
#define TX_REPORTS_MINUTES "Minuten"
#define TX_REPORTS_OPTIONS "Optionen des Berichts"
#define TX_REPORTS_HOSTS "Hosts"
#define TX_REPORTS_TRUSTED "Vertraute Hosts"
#define TX_REPORTS_DISTRUSTED "Nicht vertraute Hosts"
#define TX_REPORTS_UNKNOWN "Unbekannte Hosts"
#define TX_REPORTS_SHARES "Freigaben"
#define TX_REPORTS_REMOTE_ACCESS "Fernzugriff"
#define TX_REPORTS_WATCHED "Überwachte Hosts"

// Page Advanced: the administration accounts
#define TX_ACCOUNTS_GROUP "Administratorkonten"
#define TX_ACCOUNTS_LIST "&Konten:"
#define TX_ACCOUNTS_ADD "Kon&to hinzufügen"
#define TX_ACCOUNTS_EDIT "Konto &bearbeiten"
#define TX_ACCOUNTS_DELETE "Konto &löschen"
#define TX_ACCOUNTS_NAME "Name &des Kontos:"
#define TX_ACCOUNTS_USER "Benut&zername:"
#define TX_ACCOUNTS_PASSWORD "Ke&nnwort:"
#define TX_ACCOUNTS_SAVE "Spei&chern"

// Page Eventlog
#define TX_EVENTLOG_USE "Ereignisprotokoll &verwenden"
#define TX_EVENTLOG_SAVE "&Ereignisse in einer Datei speichern"
#define TX_EVENTLOG_LIMIT_SIZE "&Maximale Dateigröße"
#define TX_EVENTLOG_KILOBYTES "KB"

// Page Syslog
#define TX_SYSLOG_USE "Syslog &verwenden"
#define TX_SYSLOG_ENTRIES "Einträge (0 für unbegrenzt)"
#define TX_SYSLOG_NOTIFICATION "&Benachrichtigung"
#define TX_SYSLOG_LEVEL "&Wenn Stufe kleiner oder gleich:"
#define TX_SYSLOG_BY_FACILITY "&Oder Herkunft gleich:"
#define TX_SYSLOG_BY_WORDS "Oder &Meldung enthält eines der folgenden Wörter (durch Komma getrennt):"
#define TX_SYSLOG_SHOW_WINDOW "&Fenster anzeigen und ins Ereignisprotokoll eintragen"
#define TX_SYSLOG_EVENTLOG_ONLY "&Nur ins Ereignisprotokoll eintragen"

// Page Im-/Export
#define TX_EXPORT_SETTINGS "&Einstellungen exportieren"
#define TX_IMPORT_SETTINGS "Einstellungen &importieren"

// Tray menu
#define TX_MENU_START "&Start"
#define TX_MENU_STOP "S&topp"
#define TX_MENU_SILENT_MODE "Stiller &Modus"
#define TX_MENU_VIEW "&Ansicht"
#define TX_MENU_RESOURCES "&Ressourcen"
#define TX_MENU_EVENTLOG "Ereig&nisprotokoll"
#define TX_MENU_SYSLOG "SysL&og"
#define TX_MENU_SETTINGS "&Einstellungen"
#define TX_MENU_LANGUAGE "Spra&che"
#define TX_MENU_INFORMATIONS "&Informationen"
#define TX_MENU_CHECK_UPDATES "&Nach neuer Version suchen..."
#define TX_MENU_ABOUT "&Info..."
#define TX_MENU_HELP "&Hilfe (online)"
#define TX_MENU_EXIT "&Beenden"

// View menu
#define TX_MENU_PLUGINS "&Plugins"
#define TX_MENU_APPLICATIONS "&Anwendungen"
#define TX_MENU_FILTER "&Filter"
#define TX_MENU_SHOW_TRUSTED "&Vertraute Hosts anzeigen"
#define TX_MENU_SHOW_DISTRUSTED "&Nicht vertraute Hosts anzeigen"
#define TX_MENU_SHOW_UNKNOWN "&Unbekannte Hosts anzeigen"
#define TX_MENU_DEVICE_URL "&Webseite des Geräts"
#define TX_MENU_SET_TRUSTED "Host(&s) als vertraut einstufen"
#define TX_MENU_SET_DISTRUSTED "Host(s) als &nicht vertraut einstufen"
#define TX_MENU_SET_UNKNOWN "Host(s) als &unbekannt einstufen"
#define TX_MENU_DELETE_HOSTS "Ausgewählte &Hosts löschen"

// Resource menu
#define TX_MENU_EXPLORE "&Durchsuchen..."
#define TX_MENU_SEARCH "&Suchen..."
