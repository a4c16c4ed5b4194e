#!/bin/bash
# What `orvo doctor` and `orvo why` say of the sample company on a server of another make, and that
# it is what a login comes to. Run by `run 389ds|samba --company`, with the program, the site's
# configuration and the kind of server.
set -u
orvo=$1 site=$2 kind=$3
work=$(dirname "$site")
export LDAPTLS_CACERT=$work/tls/ca.pem
server=$(sed -n 's|^LDAPServer=\(ldaps://[^/]*\).*|\1|p' "$site")
failed=0

# expect NAME TEXT COMMAND...: what the command says has the text; blanks in a row count as one.
expect() {
    local name=$1 text=$2 said
    shift 2
    said=$("$@" 2>&1 | tr -s ' ' | tr '\n' '/')
    [[ $said != *"$text"* ]] || return 0
    echo "FAILED $name: $said"
    failed=$((failed + 1))
}

why() { "$orvo" why "$@" --site "$site"; }
try() { echo "$2" | why "$1" --try; }
doctor() { "$orvo" doctor --site "$site"; }

# change DN ATTRIBUTE [VALUE]: by whom the server lets do anything.
change() {
    local value=${3+"$2: $3"}
    printf 'dn: %s\nchangetype: modify\nreplace: %s\n%s\n' "$1" "$2" "$value" |
        ldapmodify -x -H "$server" -D "$root" -w "$password" >/dev/null
}

expect 'a user' 'Nothing that was looked at refuses the login.' why jsmith
expect 'a mail address' 'ok name is ' why dirk.jansen@company.example
expect 'two of one name' 'More than one user is called so' why twin
expect 'the right password' 'ok password right' try jsmith company-sample
expect 'a wrong password' "refused password It is not the user's." try jsmith wrong
expect 'a type by a group' 'type 4, from DIRECTORY.MAP.ACCOUNTS' why alee
expect 'an administrator' 'ok administrators there is one: ' doctor
expect 'rights' 'assign OrvoRole' doctor
try jsmith company-sample >/dev/null  # its count ends

# state NAME STEP PASSWORD: what the step says of the user, and then what a login comes to.
state() {
    expect "$1" "$2" why djansen
    expect "a login: $1" "$3" try djansen company-sample
}
right='ok password right'
to_be_changed='refused password It is right, but has expired or is to be changed.'

of_389ds() {
    local root='cn=Directory Manager' password config=cn=config
    local user=uid=djansen,ou=Warehouse,ou=People,o=Company expiry=passwordExpirationTime
    password=$(cat "$work/root.pw")
    change $user nsAccountLock true
    state disabled 'refused enabled It has been disabled (nsAccountLock).' \
        'refused password The account is disabled.'
    change $user nsAccountLock false
    state 'not disabled' 'ok enabled yes' "$right"
    expect 'a mark that says false' 'has not the right' \
        "$orvo" users disable djansen --site "$site"
    for _ in 1 2 3; do try djansen wrong >/dev/null; done
    state locked 'refused locked Until somebody unlocks it.' \
        'refused password The account is locked.'
    change $user accountUnlockTime
    change $user passwordRetryCount

    # Whose policy nobody sees; then the shop's account may read it.
    change $config passwordMustChange on
    change $user $expiry 19700101000000Z
    state 'to be changed, hidden' "refused password's age It has to be changed" "$to_be_changed"
    expect 'too few users' 'not known indexes' doctor
    change $config aci '(targetattr="*")(version 3.0; acl "shop"; allow (read,search,compare) userdn="ldap:///cn=shop,ou=Services,o=Company";)'
    state 'to be changed' "refused password's age It has to be changed" "$to_be_changed"
    change $config passwordMustChange off
    state 'need not be changed' "ok password's age need not be changed" "$right"
    change $user $expiry 19700101000001Z
    state 'used since' "ok password's age does not expire" "$right"
    change $user $expiry 20200101000000Z
    state 'no expiry' 'the password policy has no passwordExp' "$right"
    change $config passwordExp on
    change $config passwordGraceLimit 1
    state 'a grace login' '; 1 grace login is left.' "$to_be_changed"
    state expired '; no grace login is left.' "$to_be_changed"

    expect indexes 'ok indexes for all that is searched for' doctor
    ldapdelete -x -H "$server" -D "$root" -w "$password" \
        'cn=mail,cn=index,cn=userRoot,cn=ldbm database,cn=plugins,cn=config'
    expect 'a missing index' 'There is none for mail' doctor
}

of_samba() {
    local domain=DC=shop,DC=example user=CN=djansen,OU=Warehouse,OU=People,DC=shop,DC=example
    local root=CN=shop,OU=Services,$domain password=service-sample
    change $user userAccountControl 514
    state disabled 'refused enabled It has been disabled' 'refused password The account is disabled.'
    change $user userAccountControl 512
    change $user pwdLastSet 0
    state 'to be changed' "refused password's age It has to be changed" "$to_be_changed"
    change $user pwdLastSet -1
    state 'as it was' "ok password's age does not expire" "$right"
    for _ in 1 2 3; do try djansen wrong >/dev/null; done
    state locked ', until somebody unlocks it.' 'refused password The account is locked.'
    change $domain lockoutDuration -18000000000
    state 'locked for a time' " UTC by the domain's policy." \
        'refused password The account is locked.'
    "$orvo" users unlock djansen --site "$site" >/dev/null
    state unlocked 'ok locked no' "$right"
}

"of_$kind"
[[ $failed -gt 0 ]] && echo "$failed checks failed" || echo passed
