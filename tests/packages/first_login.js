// The first administrator of a new site, with a browser: logs in with the one-time password, is told to
// choose another one, does, logs in with that, and sees the members. A picture of each page is kept.
//
// SITE is the site's address, ONE_TIME_PASSWORD what `orvo init` printed.
'use strict';

const assert = require('node:assert/strict');
const path = require('node:path');
const { chromium } = require('playwright-core');

const { SITE: site, ONE_TIME_PASSWORD: given, ORVO_BROWSER_WORK: work } = process.env;
const chosen = 'chosen by the first administrator';

async function visit(page) {
    const field = (label) => page.getByLabel(label, { exact: true });
    const open = (role, name) => Promise.all([
        page.waitForEvent('domcontentloaded'),
        page.getByRole(role, { name, exact: true }).click(),
    ]);
    const logIn = async (password) => {
        await field('User name').fill('admin');
        await field('Password').fill(password);
        await open('button', 'Log in');
    };
    let pictures = 0;
    const shows = async (address, title) => {
        await page.screenshot({ path: path.join(work, `login ${++pictures}.png`) });
        assert.equal(page.url().slice(site.length), address);
        assert.equal(await page.locator('h1').textContent(), title);
        console.log(`  ${address.padEnd(40)} ${title}`);
    };

    await page.goto(`${site}/admin/members.asp`);
    await shows('/login.asp?url=%2Fadmin%2Fmembers.asp', 'Log in');
    await logIn('guessed');
    assert.match(await page.getByRole('alert').textContent(), /^User name or password is wrong/);
    await logIn(given);
    await open('link', 'Choose a new password');
    await shows('/password.asp', 'Change password');
    await field('Current password').fill(given);
    await field('New password').fill(chosen);
    await field('New password again').fill(chosen);
    await open('button', 'Change password');
    await shows('/login.asp', 'Log in');
    assert.match(await page.getByRole('status').textContent(), /Your password has been changed\./);

    await page.goto(`${site}/admin/members.asp`);
    await logIn(chosen);
    await shows('/admin/members.asp', 'Members');
    assert.equal(await page.locator('#user').textContent(), 'admin');
    assert.deepEqual(await page.locator('#members tbody tr td:first-child').allTextContents(), ['admin']);
}

async function main() {
    const browser = await chromium.launch({
        executablePath: process.env.CHROMIUM,
        args: process.getuid() === 0 ? ['--no-sandbox'] : [],
    });
    try {
        const context = await browser.newContext();
        context.setDefaultTimeout(15000);
        await visit(await context.newPage());
    } finally {
        await browser.close();
    }
}

main().catch((error) => {
    console.error(error);
    process.exit(1);
});
