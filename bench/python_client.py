"""What the Python clients of the benchmarks share. Standard input begins with four lines: the
server's URL, the user and the password of the service account, and the argument of the script.
Each further line is a number of rounds, answered with the seconds that they took and the number of
rows that the last one found."""

import sys
import time

import ldap

URL, USER, PASSWORD, ARGUMENT = (sys.stdin.readline().rstrip("\n") for _ in range(4))


def connected():
    connection = ldap.initialize(URL)
    connection.simple_bind_s(USER, PASSWORD)
    return connection


def search(connection, base, filter, attributes, scope=ldap.SCOPE_SUBTREE):
    """The rows, every value decoded into a text."""
    return [
        {name: [value.decode() for value in values] for name, values in row.items()}
        for _, row in connection.search_ext_s(base, scope, filter, attributes)
    ]


def serve(job):
    """Does the job as often as it is asked to; the job returns its number of rows."""
    for line in sys.stdin:
        rounds = int(line)
        begin = time.perf_counter()
        for _ in range(rounds):
            rows = job()
        print(time.perf_counter() - begin, rows, flush=True)
