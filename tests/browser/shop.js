// The sample shop with all that belongs to it, and the people who visit it with a browser.
'use strict';

const { describe, it, before, after } = require('node:test');
const assert = require('node:assert/strict');
const fs = require('node:fs');
const path = require('node:path');
const { chromium } = require('playwright-core');
const { Directory } = require('./directory');
const { findings, schemes } = require('./looks');
const { start, end, outputOf } = require('./processes');

const bin = process.env.ORVO_BIN;
const site = path.resolve(__dirname, '../../examples/shop');
const longest = 120000;
// The cases run at one width for each kind of directory.
const kind = process.env.ORVO_BROWSER_DIRECTORY;
const desktop = { width: 1280, height: 800 }, phone = { width: 360, height: 740 };
const screen = kind === 'embedded' ? phone : desktop;

// A browser's window. Each has cookies of its own.
class Visitor {
    constructor(shop, url, context, page) {
        Object.assign(this, { shop, url, context, page });
    }

    go(address) { return this.page.goto(this.url + address); }
    field(label) { return this.page.getByLabel(label, { exact: true }); }
    press(button) { return this.openBy('button', button); }
    follow(link) { return this.openBy('link', link); }
    openBy(role, name) { return this.open(this.page.getByRole(role, { name, exact: true })); }
    // Clicks what leads to a page, and waits for the page.
    open(link) { return Promise.all([this.page.waitForEvent('domcontentloaded'), link.click()]); }
    address() { return this.page.url().slice(this.url.length); }
    title() { return this.page.locator('h1').textContent(); }
    text(selector) { return this.page.locator(selector).textContent(); }
    // Waits until what is found this way has the focus: a page gives it when it is drawn.
    focus(selector) { return this.page.waitForSelector(`${selector}:focus`); }
    // What the page says went wrong, or has been done; '' where it says nothing.
    async refusal() {
        const texts = await this.page.getByRole('alert').allTextContents();
        return texts.join().replace(/\s+/g, ' ').trim();
    }
    async done() { return (await this.page.getByRole('status').allTextContents()).join(); }

    // Fills the login form of the page that is open, and sends it.
    async logInHere(user, password = 'shop-sample') {
        await this.field('User name').fill(user);
        await this.field('Password').fill(password);
        await this.press('Log in');
    }
    async logIn(user, password) {
        await this.go('/login.asp');
        await this.logInHere(user, password);
    }
    async changePassword(old, wanted, again = wanted) {
        await this.field('Current password').fill(old);
        await this.field('New password').fill(wanted);
        await this.field('New password again').fill(again);
        await this.press('Change password');
    }
    // Goes on with the login of an earlier case, where there was one.
    async resume(user) {
        const cookies = this.shop.logins.get(user);
        if (cookies) return this.context.addCookies(cookies);
        await this.logIn(user);
        this.shop.logins.set(user, await this.context.cookies());
    }
    // The name that the head of the page shows; '' for nobody.
    async loggedInAs() { return (await this.page.locator('#user').allTextContents()).join(); }
    async cookies() { return (await this.context.cookies()).map((cookie) => cookie.name).sort(); }

    async picture(name, options = {}) {
        const file = path.join(this.shop.pictures, `${name}.png`);
        await this.page.screenshot({ path: file, fullPage: true, ...options });
    }

    // Looks at the page that has just been opened at both widths and in both colour schemes, keeps
    // pictures of it, and finds nothing to complain of. Pages do not depend on the directory, so
    // each is looked at in one of the runs.
    async look(name) {
        if (!this.shop.isLookedAt) return;
        for (const size of [desktop, phone]) {
            await this.page.setViewportSize(size);
            for (const scheme of schemes) {
                await this.page.emulateMedia({ colorScheme: scheme });
                assert.deepEqual(await findings(this.page, scheme), [],
                    `${name} at ${size.width} pixels, ${scheme}`);
                if (scheme === 'light') await this.picture(`${name} ${size.width}`);
            }
            await this.page.emulateMedia({ colorScheme: null });
        }
        await this.page.setViewportSize(screen);
    }
}

class Shop {
    constructor(name) {
        this.name = name;
        this.isLookedAt = kind === 'embedded' || name === 'directory_down';
        this.work = path.join(process.env.ORVO_BROWSER_WORK, kind, name);
        this.pictures = path.join(process.env.ORVO_BROWSER_WORK, 'pictures');
        this.directory = new Directory(path.join(this.work, 'directory'), this.environment());
        this.hosts = [];
        this.visitors = [];
        this.logins = new Map();
        this.brokenPages = [];
    }

    async open() {
        fs.rmSync(this.work, { recursive: true, force: true });
        fs.mkdirSync(path.join(this.work, 'components'), { recursive: true });
        fs.mkdirSync(this.pictures, { recursive: true });
        for (const file of fs.readdirSync(this.pictures))
            if (file.startsWith(`failed ${kind} ${this.name} -`))
                fs.rmSync(path.join(this.pictures, file));
        const modules = ['OrvoMembership', 'OrvoSuite', 'OrvoEmbedded', 'OrvoPlatform'];
        await outputOf(path.join(bin, 'orvo-register'),
            modules.map((module) => path.join(bin, `${module}.so`)), this.environment());
        await this.directory.prepare();
        await this.directory.start();
        this.url = await this.serve({ multiLogin: 1 });
        this.browser = await chromium.launch({
            executablePath: process.env.CHROMIUM,
            args: process.getuid() === 0 ? ['--no-sandbox'] : [],
        });
    }

    environment() {
        return {
            ORVO_COMPONENTS: path.join(this.work, 'components'),
            ORVO_LOG_FILE: path.join(this.work, 'orvo.log'),
            ORVO_LOG_LEVEL: 'error',
            // Dates of the directory are of Greenwich, which the hosts are not.
            TZ: 'XXX-5:30',
        };
    }

    // One more web host for the same directory; its address. `folder`: of another site.
    async serve({ multiLogin, folder = site }) {
        const host = await start(path.join(bin, 'orvo-web'),
            [folder, '--port', '0', '--access-log', path.join(this.work, 'access.log')],
            {
                ...this.environment(),
                ORVO_SITE_CONFIG: this.directory.siteConfiguration(multiLogin),
            },
            (output) => /^Listening on (\S+)$/m.exec(output)?.[1]);
        this.hosts.push(host);
        return host.ready;
    }

    // The sample shop's site with pages of the test's own: { name: text }.
    async serveWith(pages) {
        const folder = path.join(this.work, 'site');
        fs.cpSync(site, folder, { recursive: true });
        for (const [name, text] of Object.entries(pages))
            fs.writeFileSync(path.join(folder, name), text);
        return this.serve({ multiLogin: 1, folder });
    }

    async visitor(url = this.url) {
        const context = await this.browser.newContext({ viewport: screen });
        context.setDefaultTimeout(15000);
        const page = await context.newPage();
        const complain = (words) => this.brokenPages.push(`${page.url()}: ${words}`);
        page.on('response', (answer) => { if (answer.status() >= 500) complain(answer.status()); });
        page.on('pageerror', (error) => complain(error.message));
        page.on('console', (line) => { if (line.type() === 'error') complain(line.text()); });
        const visitor = new Visitor(this, url, context, page);
        this.visitors.push(visitor);
        return visitor;
    }

    async leave() {
        for (const { context } of this.visitors.splice(0)) await context.close();
    }

    // Ends everything, and answers how the web hosts ended.
    async close() {
        await this.browser?.close();
        const codes = [];
        for (const host of this.hosts) {
            const code = await end(host);
            if (code !== 0) console.error(host.output());
            codes.push(code);
        }
        await this.directory.stop();
        return codes;
    }
}

// The cases of one script, in order, in one shop. `tell(title, body)` tells one: its body gets a
// visitor without cookies, and the shop. What was open when a case failed is kept as a picture.
function inTheShop(name, cases) {
    const shop = new Shop(name);
    // The last resort: nothing that was started outlives the test.
    const watchdog = setTimeout(() => {
        console.error(`${name} takes longer than ${longest / 1000} seconds`);
        process.exit(1);
    }, longest);
    for (const signal of ['SIGINT', 'SIGTERM', 'SIGHUP'])
        process.once(signal, () => process.exit(1));

    describe(name, () => {
        before(() => shop.open());
        after(async () => {
            const codes = await shop.close();
            clearTimeout(watchdog);
            assert.deepEqual(codes, shop.hosts.map(() => 0), 'the web host ended badly');
        });
        cases((title, body) => it(title, async () => {
            try {
                await body(await shop.visitor(), shop);
                assert.deepEqual(shop.brokenPages, []);
            } catch (error) {
                for (const [i, visitor] of shop.visitors.entries())
                    await visitor.picture(`failed ${kind} ${name} - ${title.replace(/\W+/g, ' ')} ${i}`);
                throw error;
            } finally {
                shop.brokenPages = [];
                await shop.leave();
            }
        }));
    });
}

// What the login page says, whatever is wrong with a name or its account.
const refused = 'User name or password is wrong, the account is locked, or there were too many ' +
    'attempts. Please wait a few minutes and try again, or ask an administrator.';

module.exports = { inTheShop, refused };
