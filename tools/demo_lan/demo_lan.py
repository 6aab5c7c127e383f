#!/usr/bin/python3
"""The demo LAN on the command line: write it to a savefile, speak it live, tell what to expect of it."""

import argparse
import json
import signal
import sys
import threading
import time

import lan_description
import lan_documents
import lan_expectations
import lan_injector
import lan_savefile
import lan_schedule

# The savefile's first second, so that the same arguments give the same file: 2024-03-04 08:15:00 UTC.
SAVEFILE_START = 1709540100


def write(options):
    lan = lan_description.Lan(options.seed)
    start = time.time() if options.start == "now" else float(options.start)
    frames = lan_schedule.frames(lan, options.seconds, options.http_base)
    count = lan_savefile.write(options.out, frames, start)
    print(f"{options.out}: {count} frames of {options.seconds:g} s")
    return 0


def stop_on_signals():
    """An event that SIGINT and SIGTERM set: both are an ordinary end."""
    stopped = threading.Event()
    for number in (signal.SIGINT, signal.SIGTERM):
        signal.signal(number, lambda *_: stopped.set())
    return stopped


def inject(options):
    stopped = stop_on_signals()
    server = (
        lan_documents.DocumentServer(options.http_address, options.http_log) if options.http_address else None
    )
    try:
        http_base = server.base if server else options.http_base
        injector = lan_injector.Injector(options.interface, stopped)
        print(f"speaking on {options.interface}, documents at {http_base}", flush=True)
        injector.run(lan_schedule.frames(lan_description.Lan(options.seed), options.seconds, http_base))
        injector.close()
        print(f"{injector.sent} frames sent", flush=True)
    finally:
        if server:
            server.close()
    return 0


def serve(options):
    return lan_documents.serve_until_stopped(options.http_address, options.http_log, stop_on_signals())


def expect(options):
    lan = lan_description.Lan(options.seed)
    json.dump(
        lan_expectations.expectations(lan, options.names == "numeric", options.seconds), sys.stdout, indent=2
    )
    print()
    return 0


def positive_seconds(text):
    seconds = float(text)
    if seconds <= 0:
        raise argparse.ArgumentTypeError("must be above 0")
    return seconds


def build_parser():
    parser = argparse.ArgumentParser(description=__doc__)
    commands = parser.add_subparsers(dest="command", required=True)
    seed = {"type": int, "default": 1, "help": "draws cards, order and times (default 1)"}
    base = {
        "default": lan_schedule.DEFAULT_HTTP_BASE,
        "help": "where the device messages say the documents are",
    }
    log = {"help": "file that gets one JSON line for each request of a document"}

    command = commands.add_parser("write", help="write a savefile")
    command.add_argument("--out", required=True)
    command.add_argument("--seconds", type=positive_seconds, required=True)
    command.add_argument("--seed", **seed)
    command.add_argument("--http-base", **base)
    command.add_argument(
        "--start", default=str(SAVEFILE_START), help="time of second 0: seconds since 1970, or now"
    )
    command.set_defaults(run=write)

    command = commands.add_parser(
        "inject", help="speak on an interface (needs the right to open a raw socket)"
    )
    command.add_argument("--interface", required=True)
    command.add_argument("--seconds", type=positive_seconds)
    command.add_argument("--seed", **seed)
    command.add_argument("--http-address", help="IP[:PORT] at which to serve the device documents")
    command.add_argument("--http-base", **base)
    command.add_argument("--http-log", **log)
    command.set_defaults(run=inject)

    command = commands.add_parser("serve", help="serve the device documents alone, beside a savefile")
    command.add_argument("--http-address", default=lan_schedule.DEFAULT_HTTP_BASE.partition("//")[2])
    command.add_argument("--http-log", **log)
    command.set_defaults(run=serve)

    command = commands.add_parser("expect", help="print as JSON what a watcher must find")
    command.add_argument("--seed", **seed)
    command.add_argument(
        "--seconds", type=positive_seconds, help="add the exact counts of a savefile of this length"
    )
    command.add_argument(
        "--names",
        choices=("none", "numeric"),
        default="none",
        help="what the resolver gives: nothing, or the address in digits",
    )
    command.set_defaults(run=expect)
    return parser


def main(arguments=None):
    options = build_parser().parse_args(arguments)
    try:
        return options.run(options)
    except OSError as error:
        print(f"demo_lan: {error}", file=sys.stderr)
        return 1


if __name__ == "__main__":
    sys.exit(main())
