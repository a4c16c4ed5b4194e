# A private 389 directory server, for `run`. Its configuration is the package's template with the
# folders of this run; nothing of it is outside of $work.

packages=(389-ds-base libnss3-tools openssl ldap-utils)
scripts=(Accessor.js Expired.js LdapAccess.js Members.js MustChange.js Passwords.js Profiles.js
    RecordSets.js ServerInfo.js Validator.js failures.js user_properties.js)

prepare() {
    local root=$work/server
    mkdir -p "$root"/{etc/schema,db,lock,log,run,bak,ldif}
    root_password=$(head -c 18 /dev/urandom | base64 | tr -d '\n')
    plain_port=$(free_port)
    tls_port=$(free_port)
    listens=("$tls_port")
    cp /etc/dirsrv/config/*.conf "$root/etc/"
    [[ $company ]] || "$servers/schema-for" 389ds "$source_tree/schema/orvo.schema" >"$root/etc/schema/98orvo.ldif"
    cp /etc/dirsrv/schema/99user.ldif "$root/etc/schema/"

    make_certificates "$work/tls" 127.0.0.1
    certutil -N -d "sql:$root/etc" --empty-password
    openssl pkcs12 -export -in "$work/tls/cert.pem" -inkey "$work/tls/key.pem" \
        -name Server-Cert -passout pass: -out "$root/server.p12"
    pk12util -i "$root/server.p12" -d "sql:$root/etc" -W '' -K '' >/dev/null
    certutil -A -d "sql:$root/etc" -n CA -t C,, -i "$work/tls/ca.pem"

    suffix=o=Shop
    [[ ! $company ]] || suffix=o=Company
    configuration >"$root/etc/dse.ldif"
    if [[ $company ]]; then
        "$servers/company-for" 389ds "$company_entries" >"$root/shop.ldif"
    else
        "$servers/shop-for" 389ds "$source_tree/examples/directory/shop.ldif" >"$root/shop.ldif"
    fi
    ns-slapd ldif2db -D "$root/etc" -n userRoot -i "$root/shop.ldif" >"$work/import.log" 2>&1 &&
        ! grep -q 'Skipping entry' "$work/import.log" ||
        { tail -n 20 "$work/import.log" >&2; fail "the entries could not be loaded"; }

    local address="ldaps://127.0.0.1:$tls_port/?cafile=$work/tls/ca.pem"
    if [[ $company ]]; then company_site "$address" "$suffix"; return; fi
    sed -e 's/OrvoDirectory.Embedded/OrvoDirectory.Ldap/' -e "s|@SERVER@|$address|" \
        "$source_tree/examples/site.ini" >"$work/site.ini"
}

# The template in lines of its own kind, then what it has no place for. Passwords may resemble what
# the entry has, for those of the sample resemble its mail addresses.
configuration() {
    local root=$work/server salt=$RANDOM$RANDOM hash
    # {SSHA}: the digest of password and salt, then the salt.
    hash="{SSHA}$({ printf %s "$root_password$salt" | openssl dgst -sha1 -binary
                    printf %s "$salt"; } | base64)"
    sed -e "s|%schema_dir%|$root/etc/schema|; s|%cert_dir%|$root/etc|; s|%config_dir%|$root/etc|" \
        -e "s|%lock_dir%|$root/lock|; s|%tmp_dir%|$root/run|; s|%run_dir%|$root/run|" \
        -e "s|%ldif_dir%|$root/ldif|; s|%bak_dir%|$root/bak|; s|%inst_dir%|$root|" \
        -e "s|%log_dir%|$root/log|; s|%db_dir%|$root/db|; s|%db_home_dir%|$root/db|" \
        -e "s|%db_lib%|bdb|; s|%fqdn%|localhost|; s|%ds_port%|$plain_port|" \
        -e "s|%ds_user%|$(id -un)|; s|%rootdn%|cn=Directory Manager|; s|%ds_passwd%|$hash|" \
        -e "s|%ldapi_enabled%|off|; s|%ldapi%|$root/run/ldapi|; s|%ldapi_autobind%|off|" \
        -e "s|%ds_suffix%|$suffix|" \
        -e "/^nsslapd-localhost:/r /dev/fd/3" /usr/share/dirsrv/data/template-dse.ldif 3<<END
nsslapd-listenhost: 127.0.0.1
nsslapd-securelistenhost: 127.0.0.1
nsslapd-security: on
nsslapd-secureport: $tls_port
nsslapd-sizelimit: 500
passwordLockout: on
passwordMaxFailure: 3
passwordUnlock: off
passwordIsGlobalPolicy: on
passwordCheckSyntax: on
passwordMinLength: 8
passwordMinCategories: 1
passwordMinTokenLength: 64
nsslapd-pwpolicy-local: on
END
    cat <<END
dn: cn=userRoot,cn=ldbm database,cn=plugins,cn=config
objectClass: extensibleObject
objectClass: nsBackendInstance
cn: userRoot
nsslapd-suffix: $suffix
nsslapd-directory: $root/db/userRoot

dn: cn="$suffix",cn=mapping tree,cn=config
objectClass: extensibleObject
objectClass: nsMappingTree
cn: "$suffix"
nsslapd-state: backend
nsslapd-backend: userRoot
END
}

serve() { exec ns-slapd -D "$work/server/etc" -i "$work/server/run/pid" -d 0; }

describe() {
    printf '%s' "$root_password" >"$work/root.pw"
    echo "its root is cn=Directory Manager, with the password in $work/root.pw"
    echo "plain: ldap://127.0.0.1:$plain_port/"
}
