// A directory of the test's own, in a server or in a file, with the sample shop, a password policy,
// and people whose password is not to be used as it is.
'use strict';

const fs = require('node:fs');
const path = require('node:path');
const { start, end, outputOf, freePort, answers } = require('./processes');

const bin = process.env.ORVO_BIN;
const source = path.resolve(__dirname, '../..');
const script = path.join(source, 'scripts/private-slapd');
const root = 'cn=root,o=Shop';

const people = `
dn: cn=monthly,ou=Policies,o=Shop
objectClass: organizationalRole
objectClass: pwdPolicy
cn: monthly
pwdAttribute: userPassword
pwdMaxAge: 2592000
pwdLockout: TRUE
pwdMaxFailure: 3

dn: cn=stale,ou=Users,o=Shop
objectClass: orvoPerson
objectClass: top
cn: stale
sn: Stale
OrvoGUID: 00000000000000000000000000000A01
OrvoUserType: 1
ProfileCN: Buyers
userPassword: shop-sample
pwdPolicySubentry: cn=monthly,ou=Policies,o=Shop
pwdChangedTime: 20200101000000Z

dn: cn=fresh,ou=Users,o=Shop
objectClass: orvoPerson
objectClass: top
cn: fresh
sn: Fresh
OrvoGUID: 00000000000000000000000000000A02
OrvoUserType: 1
ProfileCN: Buyers
userPassword: shop-sample
pwdReset: TRUE

dn: cn=late,ou=Users,o=Shop
objectClass: orvoPerson
objectClass: top
cn: late
sn: Late
OrvoGUID: 00000000000000000000000000000A03
OrvoUserType: 1
ProfileCN: Buyers
userPassword: shop-sample
pwdReset: TRUE

dn: cn=retired,ou=Users,o=Shop
objectClass: orvoPerson
objectClass: top
cn: retired
sn: Retired
OrvoGUID: 00000000000000000000000000000A04
OrvoUserType: 1
ProfileCN: Buyers
userPassword: shop-sample
pwdAccountLockedTime: 000001010000Z
`;

// `environment`: that of the programs which work with the shop.
class Directory {
    constructor(folder, environment) {
        Object.assign(this, { folder, environment });
    }

    // The file of people who are there beside those of the sample shop.
    people() {
        fs.mkdirSync(this.folder, { recursive: true });
        const ldif = path.join(this.folder, 'people.ldif');
        fs.writeFileSync(ldif, people);
        return ldif;
    }

    // By another program, of which the web host hears nothing.
    async replacePassword(cn) {
        await outputOf(path.join(bin, 'orvo'), ['users', 'password', cn, '--generate', '--quiet',
            '--site', path.join(this.folder, 'site.ini')], this.environment);
    }

    // The site configuration for this directory, which has been started before.
    siteConfiguration(multiLogin) {
        const file = path.join(this.folder, `site-${multiLogin}.ini`);
        const text = fs.readFileSync(path.join(this.folder, 'site.ini'), 'utf8')
            .replace('MultiLogin=1', `MultiLogin=${multiLogin}`);
        fs.writeFileSync(file, text);
        return file;
    }
}

// The entries of an LDIF text, as { attribute: [values] }.
function entriesOf(ldif) {
    const text = ldif.replaceAll('\n ', '');
    return text.split('\n\n').filter((entry) => entry.includes('dn:')).map((entry) => {
        const found = {};
        for (const [, name, colons, value] of entry.matchAll(/^([\w-]+)(::?) ?(.*)$/gm)) {
            const words = colons === '::' ? Buffer.from(value, 'base64').toString() : value;
            (found[name] ??= []).push(words);
        }
        return found;
    });
}

class Server extends Directory {
    async prepare() {
        await outputOf(script, ['prepare', this.folder, '--ppolicy', '--ldif', this.people()]);
        this.port = await freePort();
    }

    async start() {
        this.server = await start(script, ['run', this.folder, String(this.port)], {},
            () => answers(this.port));
    }

    async stop() {
        if (this.server) await end(this.server);
        this.server = null;
    }

    // What the directory itself says: an array of entries { attribute: [values] }.
    async search(filter, attributes, base = 'ou=Users,o=Shop') {
        const text = await outputOf('ldapsearch', ['-LLL', '-x', '-o', 'ldif-wrap=no',
            '-E', 'pr=500/noprompt', '-H', `ldap://127.0.0.1:${this.port}`, '-D', root,
            '-y', path.join(this.folder, 'root.pw'), '-b', base, filter, ...attributes]);
        return entriesOf(text);
    }

    // Whether the directory takes this password of a user's.
    async accepts(cn, password) {
        const file = path.join(this.folder, 'asked.pw');
        fs.writeFileSync(file, password, { mode: 0o600 });
        const user = `cn=${cn},ou=Users,o=Shop`;
        return outputOf('ldapwhoami', ['-x', '-H', `ldap://127.0.0.1:${this.port}`, '-D', user,
            '-y', file]).then(() => true, (error) => {
            if (/Invalid credentials/.test(error.message)) return false;
            throw error;
        });
    }
}

// The embedded directory. It neither starts nor stops.
class File extends Directory {
    async prepare() {
        await outputOf(path.join(source, 'tests/support/embedded-shop'),
            [bin, this.folder, '--ppolicy', '--ldif', this.people()]);
        this.store = path.join(this.folder, 'shop.db');
    }

    async start() {}

    async stop() {}

    // The filter is one attribute with a value, or with the beginning of one.
    async search(filter, attributes, base = 'ou=Users,o=Shop') {
        const [, name, value] = /^\((\w+)=(.*)\)$/.exec(filter);
        const matches = (held) => (value.endsWith('*')
            ? held.toLowerCase().startsWith(value.slice(0, -1).toLowerCase())
            : held.toLowerCase() === value.toLowerCase());
        const exported = await outputOf(path.join(bin, 'orvo'),
            ['directory', 'export', this.store, '-']);
        return entriesOf(exported)
            .filter((entry) => entry.dn[0].endsWith(`,${base}`) && entry[name]?.some(matches))
            .map((entry) => Object.fromEntries(Object.entries(entry).filter(([held]) => held === 'dn'
                || attributes.includes(held) || attributes.includes('*'))));
    }

    async accepts(cn, password) {
        const check = path.join(this.folder, 'check.js');
        fs.writeFileSync(check, `
            var validator = new ActiveXObject("OrvoMembership.Validator");
            validator.setServerInfo(${JSON.stringify(path.join(this.folder, 'site.ini'))});
            WScript.Echo(validator.ValidatePassword(${JSON.stringify(cn)},
                ${JSON.stringify(password)}));`, { mode: 0o600 });
        const env = { ...this.environment, ORVO_SITE_CONFIG: path.join(this.folder, 'site.ini') };
        return (await outputOf(path.join(bin, 'orvo-script'), [check], env)).trim() === '0';
    }
}

const kinds = { slapd: Server, embedded: File };

module.exports = { Directory: kinds[process.env.ORVO_BROWSER_DIRECTORY] };
