'use strict';

const assert = require('node:assert/strict');
const { inTheShop, refused } = require('./shop');

inTheShop('refusals', (tell) => {
    tell('three wrong passwords lock the account', async (visitor) => {
        for (let i = 0; i < 3; ++i) {
            await visitor.logIn('zeros', 'wrong');
            assert.equal(await visitor.refusal(), refused);
        }
        await visitor.logIn('zeros');
        assert.equal(await visitor.refusal(), refused);
        assert.equal(await visitor.loggedInAs(), '');
        assert.deepEqual(await visitor.cookies(), ['orvosession']);
        await visitor.look('login locked');
    });

    tell('the password page is for who has shown a password that is right', async (visitor) => {
        await visitor.go('/password.asp?user=jsmith');
        assert.equal(visitor.address(), '/login.asp?url=%2Fpassword.asp');
        await visitor.logInHere('jsmith');
        assert.equal(visitor.address(), '/password.asp');
    });

    tell('it takes no password as often as one likes, and locks no account', async (visitor, shop) => {
        await visitor.logIn('glee');
        for (let i = 0; i < 5; ++i) {
            await visitor.go('/password.asp');
            await visitor.changePassword('guess', 'a longer word');
        }
        assert.equal(visitor.address(), '/login.asp');
        assert.equal(await visitor.done(), 'That were too many attempts. Please log in again.');
        assert.equal(await visitor.loggedInAs(), '');
        assert.deepEqual(await visitor.cookies(), ['orvosession']);
        // Three failures would have locked it.
        assert.equal(await shop.directory.accepts('glee', 'shop-sample'), true);
    });

    tell('an expired password is changed, and the new one logs in', async (visitor, shop) => {
        await visitor.logIn('stale');
        assert.equal(await visitor.refusal(),
            'Your password has expired. Please choose a new one.');
        assert.equal(await visitor.loggedInAs(), '');
        await visitor.look('login expired');
        await visitor.follow('Choose a new password');
        await visitor.look('password expired');
        await visitor.changePassword('shop-sample', 'a new spring');
        assert.equal(visitor.address(), '/login.asp');
        assert.equal(await visitor.done(),
            'Your password has been changed. Please log in with the new one.');
        assert.equal(await shop.directory.accepts('stale', 'a new spring'), true);
        await visitor.logInHere('stale', 'a new spring');
        assert.equal(await visitor.loggedInAs(), 'stale');
    });

    tell('a password that somebody else set must be changed first', async (visitor) => {
        await visitor.logIn('fresh');
        assert.equal(await visitor.refusal(),
            'Your password has expired. Please choose a new one.');
        assert.equal(await visitor.loggedInAs(), '');
        await visitor.go('/account/');
        assert.equal(visitor.address(), '/login.asp?url=%2Faccount%2F');
        await visitor.go('/password.asp');
        await visitor.changePassword('guess', 'a new spring');
        assert.equal(await visitor.refusal(),
            'Your password has not been changed. The current password is not correct.');
        await visitor.changePassword('shop-sample', 'a new spring');
        await visitor.logInHere('fresh', 'a new spring');
        assert.equal(await visitor.loggedInAs(), 'fresh');
    });

    tell('a password that is changed elsewhere while a new one is chosen is not tried on',
        async (visitor, shop) => {
            await visitor.logIn('late');
            await visitor.follow('Choose a new password');
            const admin = await shop.visitor();
            await admin.logIn('admin');
            await admin.go('/admin/member.asp?cn=late&ask=reset');
            await admin.press('Replace password');
            await visitor.changePassword('shop-sample', 'a new spring');
            assert.equal(visitor.address(), '/login.asp');
            assert.equal(await visitor.done(), 'The directory does not accept your password any ' +
                'more. Please log in again.');
            await visitor.go('/password.asp');
            assert.equal(visitor.address(), '/login.asp?url=%2Fpassword.asp');
        });

    tell('a name that is locked is not told from one that is not there', async (visitor) => {
        const said = {};
        for (const name of ['zeros', 'nobody at all', 'retired']) {
            const answers = [];
            for (let i = 0; i < 4; ++i) {
                await visitor.go('/login.asp');
                await visitor.field('User name').fill(name);
                await visitor.field('Password').fill('wrong');
                const [answer] = await Promise.all([
                    visitor.page.waitForResponse((one) => one.request().method() === 'POST'),
                    visitor.press('Log in')]);
                answers.push([answer.status(), await visitor.refusal(),
                    (await visitor.text('main')).replaceAll(name, '')]);
            }
            said[name] = answers;
        }
        assert.deepEqual(said.zeros, said['nobody at all']);
        assert.deepEqual(said.retired, said['nobody at all']);
    });

    tell('who is disabled is not let in', async (visitor) => {
        await visitor.logIn('retired');
        assert.equal(await visitor.refusal(), refused);
    });

    tell('who may use no application is told so and is not logged in', async (visitor) => {
        await visitor.logIn('norole');
        assert.equal(await visitor.refusal(),
            'Your password is right, but your account may not use any application here.');
        assert.equal(await visitor.loggedInAs(), '');
        assert.deepEqual(await visitor.cookies(), ['orvosession']);
        await visitor.look('login no application');
        await visitor.go('/account/');
        assert.equal(visitor.address(), '/login.asp?url=%2Faccount%2F');
    });

    tell('an ordinary user does not see the administration', async (visitor) => {
        await visitor.logIn('jsmith');
        assert.deepEqual(await visitor.page.locator('nav a').allTextContents(), ['My account']);
        await visitor.go('/admin/members.asp');
        assert.equal(visitor.address(), '/login.asp?url=%2Fadmin%2Fmembers.asp');
        assert.equal(await visitor.refusal(),
            'Your account may not open this page. You can log in with another one.');
        assert.equal(await visitor.loggedInAs(), 'jsmith');
        await visitor.look('login for the administration');
        await visitor.logInHere('admin');
        assert.equal(visitor.address(), '/admin/members.asp');
        assert.equal(await visitor.loggedInAs(), 'admin');
    });

    tell('an ordinary user who sends a form of the administration is told so', async (visitor) => {
        await visitor.logIn('jsmith');
        const answer = await visitor.context.request.post(visitor.url + '/admin/members.asp', {
            form: { sender: 'jsmith', Phone: '4711' }, headers: { Origin: visitor.url },
        });
        const text = await answer.text();
        assert.match(text, /Your account may not open this page/);
        assert.doesNotMatch(text, /login has ended/);
        await visitor.go('/account/');
        assert.equal(await visitor.loggedInAs(), 'jsmith');
    });

    tell('a local administrator sees the administration', async (visitor) => {
        await visitor.logIn('local');
        await visitor.go('/admin/profiles.asp');
        assert.equal(await visitor.title(), 'Profiles');
    });

    tell('a form without the session\'s token is refused', async (visitor, { directory }) => {
        await visitor.logIn('jsmith');
        await visitor.field('Phone').fill('000');
        await visitor.page.locator('main [name=token]').evaluate((field) => field.remove());
        await visitor.press('Save');
        assert.equal(await visitor.refusal(),
            'This form is too old, or did not come from this site. Please send it again.');
        assert.equal(await visitor.field('Phone').inputValue(), '000');
        assert.deepEqual((await directory.search('(cn=jsmith)', ['PhoneNumber']))[0].PhoneNumber,
            ['+44 20 7946 0018']);
        await visitor.press('Save');
        assert.equal(await visitor.done(), 'Your account has been saved.');
        assert.deepEqual((await directory.search('(cn=jsmith)', ['PhoneNumber']))[0].PhoneNumber,
            ['000']);
    });

    tell('nor is a form taken with another session\'s token', async (visitor, shop) => {
        const other = await shop.visitor();
        await other.go('/login.asp');
        const token = await other.page.locator('main [name=token]').inputValue();
        await visitor.logIn('jsmith');
        await visitor.page.locator('header [name=token]')
            .evaluate((field, value) => { field.value = value; }, token);
        await visitor.press('Log out');
        assert.equal(await visitor.loggedInAs(), 'jsmith');
    });

    tell('a login form without the token logs nobody in', async (visitor) => {
        await visitor.go('/login.asp');
        await visitor.page.locator('main [name=token]').evaluate((field) => field.remove());
        await visitor.logInHere('jsmith');
        assert.equal(await visitor.refusal(),
            'This form is too old, or did not come from this site. Please send it again.');
        assert.equal(await visitor.loggedInAs(), '');
    });

    tell('a page that is not there is told in the site\'s frame', async (visitor, shop) => {
        for (const address of ['/nowhere.asp', '/nowhere/at/all.png']) {
            const answer = await visitor.go(address);
            assert.equal(answer.status(), 404, address);
            assert.equal(await visitor.title(), 'Not found');
        }
        await visitor.look('error not found');
        await visitor.logIn('jsmith');
        await visitor.go('/nowhere.asp');
        assert.equal(await visitor.loggedInAs(), 'jsmith');
        shop.brokenPages = [];  // the browser's own lines about the 404s
    });

    tell('a page that fails is told in the site\'s frame, without the reason', async (_, shop) => {
        const url = await shop.serveWith({ 'broken.asp': '<p>So far</p><% nothing.here(); %>' });
        const visitor = await shop.visitor(url);
        await visitor.logIn('jsmith');
        const answer = await visitor.go('/broken.asp');
        assert.equal(answer.status(), 500);
        assert.equal(await visitor.title(), 'Something went wrong');
        assert.equal(await visitor.loggedInAs(), 'jsmith');
        const reference = await visitor.text('#reference');
        assert.match(reference, /^\S{8}$/);
        assert.ok(shop.hosts.at(-1).output().includes(reference));
        assert.doesNotMatch(await visitor.text('body'), /nothing|So far/);
        await visitor.look('error failed');
        shop.brokenPages = [];  // the browser's own line about the 500, and ours
    });

    tell('the page for a site that is busy looks like the others', async (visitor) => {
        await visitor.go('/errors/busy.html');
        await visitor.look('error busy');
    });
});
