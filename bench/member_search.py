"""The job of member_search_bench with python-ldap: the same search on a kept connection. The
argument is the filter."""

from python_client import ARGUMENT, connected, search, serve

ATTRIBUTES = ["CN", "BusinessPartnerID", "mail", "givenName", "sn"]

kept = connected()
serve(lambda: len(search(kept, "ou=Users,o=Shop", ARGUMENT, ATTRIBUTES)))
