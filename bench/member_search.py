"""The job of member_search_bench in Python: the same search with python-ldap on a kept connection,
every row decoded into texts. Reads a line of JSON from standard input for each run, {"url", "user",
"password", "filter", "rounds"}, and answers each with the seconds of one search and the number of rows."""

import json
import sys
import time

import ldap

ATTRIBUTES = ["CN", "BusinessPartnerID", "mail", "givenName", "sn"]

connection = None
for line in sys.stdin:
    job = json.loads(line)
    if connection is None:
        connection = ldap.initialize(job["url"])
        connection.simple_bind_s(job["user"], job["password"])
    begin = time.perf_counter()
    for _ in range(job["rounds"]):
        rows = [
            {name: [value.decode() for value in values] for name, values in attributes.items()}
            for _, attributes in connection.search_ext_s(
                "ou=Users,o=Shop", ldap.SCOPE_SUBTREE, job["filter"], ATTRIBUTES)
        ]
    print((time.perf_counter() - begin) / job["rounds"], len(rows), flush=True)
