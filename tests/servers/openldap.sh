# A private OpenLDAP with the sample company, for `run`.

packages=(slapd ldap-utils)
scripts=(Company.js)

prepare() {
    [[ $company ]] || fail "every other test runs against OpenLDAP; this is for --company"
    port=$(free_port)
    listens=("$port")
    "$source_tree/scripts/private-slapd" prepare "$work/server" \
        --directory "$source_tree/examples/directories/openldap"
    company_site "127.0.0.1:$port" o=Company
}

serve() { exec "$source_tree/scripts/private-slapd" run "$work/server" "$port"; }

describe() { echo "its root is cn=root,o=Company, with the password in $work/server/root.pw"; }
