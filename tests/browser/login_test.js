'use strict';

const assert = require('node:assert/strict');
const { inTheShop, refused } = require('./shop');

inTheShop('login', (tell) => {
    tell('a right password leads to the account', async (visitor) => {
        await visitor.go('/');
        await visitor.look('welcome');
        await visitor.open(visitor.page.locator('main').getByRole('link', { name: 'Log in' }));
        await visitor.look('login');
        await visitor.logInHere('jsmith');
        assert.equal(visitor.address(), '/account/');
        assert.equal(await visitor.loggedInAs(), 'jsmith');
        assert.equal(await visitor.text('#cn'), 'jsmith');
        assert.deepEqual(await visitor.cookies(), ['QUENDRAID', 'orvosession']);
        await visitor.look('account');
        await visitor.go('/');
        await visitor.look('welcome logged in');
    });

    tell('what went wrong has the focus, and a key leads past the head', async (visitor) => {
        await visitor.go('/login.asp');
        await visitor.focus('#f-user');
        await visitor.logInHere('guest', 'wrong');
        await visitor.focus('#problem');
        await visitor.go('/');
        await visitor.page.keyboard.press('Tab');
        await visitor.focus('.skip');
        assert.ok((await visitor.page.locator('.skip').boundingBox()).x >= 0);
        await visitor.page.keyboard.press('Enter');
        await visitor.focus('#main');
    });

    tell('nothing moves for who wants it so', async (visitor) => {
        const scrolling = () => visitor.page.evaluate(
            () => getComputedStyle(document.documentElement).scrollBehavior);
        await visitor.go('/');
        assert.equal(await scrolling(), 'smooth');
        await visitor.page.emulateMedia({ reducedMotion: 'reduce' });
        assert.equal(await scrolling(), 'auto');
    });

    tell('scripts and styles within a page are not carried out', async (visitor, shop) => {
        await visitor.go('/');
        await visitor.page.evaluate(() => {
            const script = document.createElement('script');
            script.textContent = 'document.title = "owned"';
            document.body.append(script);
            document.body.insertAdjacentHTML('beforeend', '<p style="color: red">styled</p>');
        });
        assert.notEqual(await visitor.page.title(), 'owned');
        assert.notEqual(await visitor.page.getByText('styled').evaluate(
            (element) => getComputedStyle(element).color), 'rgb(255, 0, 0)');
        assert.equal(shop.brokenPages.length, 2);
        shop.brokenPages = [];  // the browser's own lines about these two
    });

    tell('neither cookie is for scripts or for other sites', async (visitor) => {
        await visitor.logIn('jsmith');
        for (const cookie of await visitor.context.cookies()) {
            assert.equal(cookie.httpOnly, true, cookie.name);
            assert.equal(cookie.sameSite, 'Lax', cookie.name);
            assert.equal(cookie.path, '/', cookie.name);
        }
    });

    tell('a wrong password is refused and leaves no login', async (visitor) => {
        await visitor.logIn('guest', 'wrong');
        assert.equal(await visitor.refusal(), refused);
        assert.equal(await visitor.field('User name').inputValue(), 'guest');
        assert.equal(await visitor.field('Password').inputValue(), '');
        assert.deepEqual(await visitor.cookies(), ['orvosession']);
        await visitor.look('login refused');
        await visitor.go('/account/');
        assert.equal(visitor.address(), '/login.asp?url=%2Faccount%2F');
    });

    tell('a user who does not exist is refused with the same words', async (visitor) => {
        await visitor.logIn('nobody at all');
        assert.equal(await visitor.refusal(), refused);
    });

    tell('a guarded page is shown after the login, with its query', async (visitor) => {
        await visitor.go('/admin/members.asp?name=o%27brien');
        assert.equal(visitor.address(),
            '/login.asp?url=%2Fadmin%2Fmembers.asp%3Fname%3Do%2527brien');
        await visitor.logInHere('admin', 'wrong');
        await visitor.logInHere('admin');
        assert.equal(visitor.address(), '/admin/members.asp?name=o%27brien');
        assert.deepEqual(await visitor.page.locator('#members tbody tr td:first-child')
            .allTextContents(), ["O'Brien"]);
    });

    tell('an address of another site is not gone to', async (visitor) => {
        await visitor.go('/login.asp?url=https%3A%2F%2Felsewhere.example%2F');
        await visitor.logInHere('jsmith');
        assert.equal(visitor.address(), '/account/');
    });

    tell('the session gets a new identifier at login', async (visitor) => {
        const session = async () => (await visitor.context.cookies())
            .find((cookie) => cookie.name === 'orvosession').value;
        await visitor.go('/login.asp');
        const before = await session();
        await visitor.logInHere('jsmith');
        assert.notEqual(await session(), before);
    });

    tell('after logging out the guarded pages ask for the login again', async (visitor) => {
        await visitor.logIn('jsmith');
        await visitor.press('Log out');
        assert.equal(visitor.address(), '/');
        assert.equal(await visitor.loggedInAs(), '');
        assert.deepEqual(await visitor.cookies(), []);
        await visitor.go('/account/');
        assert.equal(visitor.address(), '/login.asp?url=%2Faccount%2F');
        assert.equal(await visitor.refusal(), '');
        await visitor.page.goBack();
        await visitor.page.reload();
        assert.equal(await visitor.loggedInAs(), '');
    });

    tell('the cookies of a login that was logged out open nothing', async (visitor, shop) => {
        await visitor.logIn('jsmith');
        const cookies = await visitor.context.cookies();
        await visitor.press('Log out');
        const thief = await shop.visitor();
        await thief.context.addCookies(cookies);
        await thief.go('/account/');
        assert.equal(thief.address(), '/login.asp?url=%2Faccount%2F');
    });

    tell('names with signs and letters of every language log in', async (visitor) => {
        for (const name of ["O'Brien", 'Жанна Жукова', 'Jörg Weiß', 'Smith, John']) {
            await visitor.logIn(name);
            assert.equal(await visitor.loggedInAs(), name);
            assert.equal(await visitor.text('#cn'), name);
        }
    });
});
