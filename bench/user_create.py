"""The job of user_create_bench with python-ldap: the same operations. The argument is "kept" for one
connection, "connecting" for one for each creation and another for each deletion."""

import ldap

from python_client import ARGUMENT, connected, search, serve

# Not the user of the other clients, so that one left behind by a failure is not in their way.
NAME = "python"
USER = f"cn={NAME},ou=Users,o=Shop"


def read(connection, entry, attributes):
    return len(search(connection, entry, None, attributes, ldap.SCOPE_BASE))


def create(connection):
    connection.add_s(USER, [
        ("objectClass", [b"orvoPerson", b"top"]),
        ("cn", [NAME.encode()]),
        ("OrvoGUID", [b"00112233445566778899AABBCCDDEEFF"]),
        ("OrvoUserType", [b"0"]),
    ])
    connection.passwd_s(USER, None, "bench-sample")
    return (read(connection, USER, ["cn", "OrvoUserType", "ProfileCN"])
            + read(connection, "cn=0,ou=Accounts,o=Shop", ["cn"]))


def delete(connection):
    rows = read(connection, "ou=Users,o=Shop", ["ou"])
    connection.delete_s(USER)
    return rows


def on_kept():
    return create(kept) + delete(kept)


def connecting():
    rows = 0
    for operations in create, delete:
        connection = connected()
        rows += operations(connection)
        connection.unbind_s()
    return rows


if ARGUMENT == "kept":
    kept = connected()
    serve(on_kept)
else:
    serve(connecting)
