# A private Samba domain controller, for `run`: of all its services the directory alone. Samba's
# directory listens on ports 389 and 636 whatever it is told, so it gets a loopback address of its
# own. What is tried here is reading, login and password change.

packages=(samba samba-ad-dc samba-ad-provision samba-dsdb-modules samba-vfs-modules ldb-tools
    python3-samba openssl ldap-utils)
scripts=(Accessor.js LdapAccess.js Members.js MustChange.js Passwords.js Profiles.js RecordSets.js
    Validator.js failures.js user_properties.js)
root=DC=shop,DC=example

prepare() {
    [[ $EUID -eq 0 ]] || fail "a Samba domain runs as root"
    address=$(free_address)
    listens=(636 "$address")
    make_certificates "$work/tls" "$address"
    mkdir "$work/server"
    samba-tool domain provision --targetdir="$work/server" --realm=SHOP.EXAMPLE --domain=SHOP \
        --server-role=dc --dns-backend=NONE --host-name=dc1 --host-ip="$address" \
        --option="posix:eadb=$work/server/eadb.tdb" --option="log file=$work/samba.log" \
        >"$work/provision.log" 2>&1 ||
        { tail -n 20 "$work/provision.log" >&2; fail "the domain could not be made"; }
    database=(-H "$work/server/private/sam.ldb" --configfile="$work/server/etc/smb.conf")
    settings >"$work/server/etc/own.conf"
    sed -i "/^\[global\]/a include = $work/server/etc/own.conf" "$work/server/etc/smb.conf"

    [[ $company ]] || load_schema
    samba-tool domain passwordsettings set "${database[@]}" --complexity=off --min-pwd-length=8 \
        --account-lockout-threshold=3 --account-lockout-duration=0 --history-length=0 \
        --min-pwd-age=0 --max-pwd-age=0 >>"$work/load.log"
    if [[ $company ]]; then
        load_company
        return
    fi
    "$servers/shop-for" samba --root "$root" "$source_tree/examples/directory/shop.ldif" \
        >"$work/shop.ldif"
    load "$work/shop.ldif"
    # The service account writes users' passwords.
    samba-tool group addmembers 'Domain Admins' orvo-service "${database[@]}" >>"$work/load.log"

    sed -i "s/o=Shop/$root/" "$work"/Config/*
    sed -e 's/OrvoDirectory.Embedded/OrvoDirectory.Ldap/' \
        -e "s|@SERVER@|ldaps://$address/?cafile=$work/tls/ca.pem|" \
        -e "s/^LDAPRoot=.*/LDAPRoot=$root/" \
        -e 's/^UserClass=.*/UserClass=orvoMember,user,organizationalPerson,person,top/' \
        "$source_tree/examples/site.ini" >"$work/site.ini"
}

load_schema() {
    local part
    for part in attributes classes; do
        "$servers/schema-for" samba --part $part --root "CN=Schema,CN=Configuration,$root" \
            "$source_tree/schema/orvo.schema" >"$work/$part.ldif"
        load "$work/$part.ldif" --option='dsdb:schema update allowed=true'
    done
}

load_company() {
    "$servers/company-for" samba --root "$root" "$company_entries" >"$work/company.ldif"
    load "$work/company.ldif"
    "$servers/company-for" samba-members --root "$root" "$company_entries" >"$work/members.ldif"
    ldbmodify "${database[@]}" "$work/members.ldif" >>"$work/load.log" 2>&1 ||
        { tail -n 5 "$work/load.log" >&2; fail "the teams could not be loaded"; }
    samba-tool group addmembers 'Domain Admins' shop "${database[@]}" >>"$work/load.log"
    company_site "ldaps://$address/?cafile=$work/tls/ca.pem" "$root"
}

free_address() {
    local address
    for _ in {1..100}; do
        address=127.$((RANDOM % 250 + 2)).$((RANDOM % 250)).$((RANDOM % 250 + 2))
        (exec 3<>"/dev/tcp/$address/389") 2>/dev/null || { echo "$address"; return; }
    done
    fail "no free address"
}

settings() {
    cat <<END
interfaces = $address/8
bind interfaces only = yes
server services = ldap
log file = $work/samba.log
pid directory = $work/server
ncalrpc dir = $work/server/ncalrpc
tls certfile = $work/tls/cert.pem
tls keyfile = $work/tls/key.pem
tls cafile = $work/tls/ca.pem
END
}

# load FILE [OPTION...]: entries, while the server does not run.
load() {
    local file=$1
    shift
    ldbadd "${database[@]}" "$@" "$file" >>"$work/load.log" 2>&1 ||
        { tail -n 5 "$work/load.log" >&2; fail "${file##*/} could not be loaded"; }
}

serve() {
    exec samba -F -M single --no-process-group -s "$work/server/etc/smb.conf" --debug-stdout
}

describe() { echo "its root is $root"; }
