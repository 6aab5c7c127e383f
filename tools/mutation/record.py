"""What became of each change, kept in a file, so that a run can go on where another was cut off."""

import hashlib
import json

from workshop import Outcome


def identity(mutation, text):
    """A change is the same as long as its file is."""
    return [mutation.file, mutation.start, mutation.end, mutation.replacement,
            hashlib.sha256(text.encode()).hexdigest()[:16]]


def last_entries(path):
    """The entries of a record in their order, of each change the last."""
    entries = {}
    with open(path, encoding="utf-8") as file:
        for line in file:
            try:
                entry = json.loads(line)
            except ValueError:
                continue  # cut off in the middle
            entries[tuple(entry["change"])] = entry
    return list(entries.values())


def _words(lines):
    return [[line[0], *line[1:].split()] for line in lines]


def find_again(entry, mutations, sources, diff_of):
    """The change of an entry in the sources as they are now, the nearest where several look the same; or None."""
    file, _, _, replacement, _ = entry["change"]
    same = [mutation for mutation in mutations
            if (mutation.file, mutation.replacement, mutation.kind) == (file, replacement, entry["kind"]) and
            _words(diff_of(mutation, sources[file])) == _words(entry["diff"])]
    return min(same, key=lambda mutation: abs(mutation.line(sources[file]) - entry["line"]), default=None)


class Record:
    def __init__(self, path):
        self.known = {}
        self.file = None
        if not path:
            return
        self.file = open(path, "a+", encoding="utf-8")
        self.file.seek(0)
        text = self.file.read()
        for line in text.split("\n")[:-1]:
            self._read(line)
        if not text.endswith("\n") and text:
            self.file.write("\n")  # a run was cut off in the middle of a line

    def _read(self, line):
        try:
            entry = json.loads(line)
        except ValueError:
            return  # such a line
        self.known[tuple(entry["change"])] = Outcome(entry["outcome"])

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.file:
            self.file.close()

    def outcomes(self, mutations, sources, sample, again):
        """What is known of the first `sample` changes that count; with `again` survivors are not known."""
        found, counted = {}, 0
        for mutation in mutations:
            outcome = self.known.get(tuple(identity(mutation, sources[mutation.file])))
            if counted == sample:
                break
            counted += outcome not in (Outcome.NOT_COMPILED, Outcome.NO_EFFECT)
            if outcome and not (again and outcome in (Outcome.SURVIVED, Outcome.UNDECIDED)):
                found[mutation] = outcome
        return found

    def add(self, mutation, text, outcome, diff):
        if not self.file:
            return
        self.file.write(json.dumps({"change": identity(mutation, text), "line": mutation.line(text),
                                    "kind": mutation.kind, "outcome": outcome.value, "diff": diff}) + "\n")
        self.file.flush()
