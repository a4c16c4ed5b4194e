"""The job of role_search_bench with python-ldap: the same three searches on a kept connection. The
argument is the number of the role."""

from python_client import ARGUMENT, connected, search, serve

USERS = "ou=Users,o=Shop"
SELECTION = "(objectClass=orvoPerson)(!(OrvoUserType=0))"
ATTRIBUTES = ["BusinessPartnerID", "mail", "givenName", "sn"]

kept = connected()


def role_search():
    rows = 0
    profiles = "".join(
        f"(ProfileCN={row['cn'][0]})"
        for row in search(kept, "ou=Profiles,o=Shop",
                          f"(&(objectClass=orvoProfile)(OrvoRole={ARGUMENT}))", ["cn"]))
    if profiles:
        rows += len(search(kept, USERS, f"(&{SELECTION}(|{profiles}))",
                           ["cn", *ATTRIBUTES, "orvorole"]))
    rows += len(search(kept, USERS, f"(&(OrvoRole={ARGUMENT}){SELECTION})", ["CN", *ATTRIBUTES]))
    return rows


serve(role_search)
