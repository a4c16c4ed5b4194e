'use strict';

const assert = require('node:assert/strict');
const fs = require('node:fs');
const path = require('node:path');
const { inTheShop, refused } = require('./shop');

const entry = async (directory, cn, attributes) =>
    (await directory.search(`(cn=${cn})`, attributes))[0];

inTheShop('account', (tell) => {
    tell('the account shows its typed properties', async (visitor) => {
        await visitor.resume('jsmith');
        await visitor.go('/account/');
        assert.deepEqual(await visitor.page.locator('dd').allTextContents(), ['jsmith',
            'Registered user', 'Buyers', 'Buyer, Requisitioner, Receiver', '1, 2',
            '1\u2009234.50', '12/2028']);
        assert.equal(await visitor.field('Delivery address').inputValue(), '501');
        assert.equal(await visitor.field('I am out of office').isChecked(), false);
    });

    tell('what is edited is in the page and in the directory', async (visitor, { directory }) => {
        await visitor.resume('jsmith');
        await visitor.go('/account/');
        await visitor.field('Phone').fill('+44 20 7946 0999');
        await visitor.field('Delivery address').fill('502');
        await visitor.field('Fax').fill('');
        await visitor.field('I am out of office').check();
        await visitor.press('Save');
        assert.equal(visitor.address(), '/account/');
        assert.equal(await visitor.done(), 'Your account has been saved.');
        await visitor.look('account saved');

        await visitor.page.reload();
        assert.equal(await visitor.done(), '');
        assert.equal(await visitor.field('Phone').inputValue(), '+44 20 7946 0999');
        assert.equal(await visitor.field('Fax').inputValue(), '');
        assert.equal(await visitor.field('I am out of office').isChecked(), true);
        const found = await entry(directory, 'jsmith', ['PhoneNumber', 'DeliveryAddressID',
            'facsimileTelephoneNumber', 'OutOfOfficeOn', 'givenName']);
        assert.deepEqual(found, { dn: ['cn=jsmith,ou=Users,o=Shop'], givenName: ['John'],
            PhoneNumber: ['+44 20 7946 0999'], DeliveryAddressID: ['502'], OutOfOfficeOn: ['1'] });
    });

    tell('letters of every language and signs of HTML are kept', async (visitor, { directory }) => {
        const first = 'Jo<b>&amp;"\' Жанна 山田 😀';
        await visitor.resume('jsmith');
        await visitor.go('/account/');
        await visitor.field('First name').fill(first);
        await visitor.press('Save');
        assert.equal(await visitor.field('First name').inputValue(), first);
        assert.deepEqual((await entry(directory, 'jsmith', ['givenName'])).givenName, [first]);
        assert.equal(await visitor.page.locator('main b').count(), 0);
    });

    tell('a password change is checked before it is made', async (visitor, { directory }) => {
        await visitor.resume('jsmith');
        await visitor.go('/password.asp');
        const change = async (...words) => {
            await visitor.changePassword(...words);
            return (await visitor.refusal()).replace('Your password has not been changed. ', '');
        };
        assert.equal(await change('shop-sample', 'first words', 'other words'),
            'The new password is not the same twice.');
        assert.equal(await change('shop-sample', ''), 'The new password is empty.');
        assert.equal(await change('wrong', 'first words'),
            'The current password is not correct.');
        assert.equal(await directory.accepts('jsmith', 'shop-sample'), true);
        assert.equal(await change('shop-sample', 'short'),
            'The directory refuses it. Password fails quality checking policy');
        await visitor.look('password refused');
        assert.equal(await directory.accepts('jsmith', 'shop-sample'), true);
    });

    tell('after a password change the login goes on, others end, and only the new one counts',
        async (visitor, shop) => {
            const elsewhere = await shop.visitor();
            await elsewhere.logIn('glee');
            await visitor.logIn('glee');
            await visitor.follow('Change password');
            await visitor.changePassword('shop-sample', 'a longer word');
            assert.equal(await visitor.done(), 'Your password has been changed.');
            assert.equal(visitor.address(), '/account/');
            await visitor.page.reload();
            assert.equal(await visitor.text('#cn'), 'glee');
            await visitor.field('Position').fill('Chief approver');
            await visitor.press('Save');
            assert.equal(await visitor.done(), 'Your account has been saved.');

            await elsewhere.page.reload();
            assert.equal(await elsewhere.refusal(), 'Your login has ended. Please log in again.');
            await elsewhere.logInHere('glee', 'shop-sample');
            assert.equal(await elsewhere.refusal(), refused);
            await elsewhere.logInHere('glee', 'a longer word');
            assert.equal(await elsewhere.loggedInAs(), 'glee');
        });

    tell('a login ends when an administrator replaces its password', async (visitor, shop) => {
        await visitor.logIn('akilic');
        const admin = await shop.visitor();
        await admin.logIn('admin');
        await admin.go('/admin/member.asp?cn=akilic&ask=reset');
        await admin.press('Replace password');
        await visitor.go('/account/');
        assert.equal(visitor.address(), '/login.asp?url=%2Faccount%2F');
        assert.equal(await visitor.refusal(), 'Your login has ended. Please log in again.');
        await admin.go('/account/');
        assert.equal(await admin.loggedInAs(), 'admin');
    });

    tell('a login whose password was changed elsewhere is told so', async (_, shop) => {
        const settings = fs.readFileSync(path.join(__dirname, '../../examples/shop/site.ini'), 'utf8');
        const visitor = await shop.visitor(await shop.serveWith(
            { 'site.ini': `${settings}\nDirectoryPool=RecheckAfter = 0\n` }));
        await visitor.logIn('awalker');
        await shop.directory.replacePassword('awalker');
        await visitor.go('/account/');
        assert.equal(await visitor.refusal(), 'The directory does not accept your name and ' +
            'password any more. Please log in again.');
        assert.equal(await visitor.loggedInAs(), '');
        await visitor.look('account outdated');
    });

    tell('what is wrong is told field by field, and nothing of it is saved',
        async (visitor, { directory }) => {
            const attributes = ['givenName', 'c', 'mail', 'DeliveryAddressID', 'sn'];
            const before = await entry(directory, 'zeros', attributes);
            await visitor.logIn('zeros');
            await visitor.field('First name').fill('Somebody');
            await visitor.field('E-mail').fill('nowhere');
            await visitor.field('Country').fill('Germany');
            await visitor.field('Delivery address').fill('12a');
            await visitor.field('Last name').fill('x'.repeat(256));
            await visitor.press('Save');
            assert.equal(await visitor.refusal(), 'Nothing has been saved. ' +
                'Last name: This is longer than 255 characters. ' +
                'E-mail: "nowhere" is not a mail address. ' +
                'Country: "Germany" is not a country\'s two letters. ' +
                'Delivery address: "12a" is not a number.');
            assert.equal(await visitor.field('First name').inputValue(), 'Somebody');
            assert.equal(await visitor.field('Country').inputValue(), 'Germany');
            assert.equal(await visitor.field('Country').getAttribute('aria-invalid'), 'true');
            assert.equal(await visitor.field('First name').getAttribute('aria-invalid'), null);
            await visitor.page.getByRole('link', { name: /^Country:/ }).click();
            assert.equal(await visitor.page.evaluate(() => document.activeElement.name), 'Country');
            await visitor.look('account with errors');
            assert.deepEqual(await entry(directory, 'zeros', attributes), before);

            await visitor.field('E-mail').fill('zeros@shop.example');
            await visitor.field('Country').fill('de');
            await visitor.field('Delivery address').fill('');
            await visitor.field('Last name').fill('Body');
            await visitor.press('Save');
            assert.equal(await visitor.done(), 'Your account has been saved.');
            assert.deepEqual(await entry(directory, 'zeros', attributes), { dn: before.dn,
                givenName: ['Somebody'], sn: ['Body'], mail: ['zeros@shop.example'], c: ['de'] });
        });

    tell('a change that somebody else has made meanwhile is shown, and asked about',
        async (visitor, shop) => {
            const attributes = ['PhoneNumber', 'Position', 'OutOfOfficeOn'];
            const elsewhere = await shop.visitor();
            await visitor.logIn('Jörg Weiß');
            await elsewhere.logIn('Jörg Weiß');
            await elsewhere.field('Position').fill('Head of something');
            await elsewhere.field('Phone').fill('1');
            await elsewhere.field('I am out of office').check();
            await elsewhere.press('Save');
            assert.equal(await elsewhere.done(), 'Your account has been saved.');

            await visitor.field('Phone').fill('2');
            await visitor.press('Save');
            assert.equal(await visitor.refusal(), 'Somebody else has changed this meanwhile. ' +
                'Nothing has been saved. Please look at what is marked, and save again. ' +
                'Phone: Changed meanwhile from nothing to "1". Saving replaces that with "2". ' +
                'Position: Changed meanwhile from nothing to "Head of something". ' +
                'I am out of office: Changed meanwhile from "no" to "yes".');
            assert.equal(await visitor.field('Phone').inputValue(), '2');
            assert.equal(await visitor.field('Position').inputValue(), 'Head of something');
            assert.equal(await visitor.field('I am out of office').isChecked(), true);
            await visitor.look('account changed meanwhile');
            assert.deepEqual((await entry(shop.directory, 'Jörg Weiß', attributes)).PhoneNumber,
                ['1']);
            await visitor.press('Save');
            assert.equal(await visitor.done(), 'Your account has been saved.');
            const { dn, ...saved } = await entry(shop.directory, 'Jörg Weiß', attributes);
            assert.deepEqual(saved, { PhoneNumber: ['2'], Position: ['Head of something'],
                OutOfOfficeOn: ['1'] });
        });

    // Somebody logs out in another window, or the login's time runs out.
    const endLogin = async (visitor) => {
        const other = await visitor.context.newPage();
        await other.goto(visitor.url + '/');
        await other.getByRole('button', { name: 'Log out' }).click();
        await other.getByRole('link', { name: 'Log in', exact: true }).first().waitFor();
        await other.close();
    };
    const phoneOf = async (shop, name) =>
        (await shop.directory.search(`(cn=${name})`, ['PhoneNumber']))[0].PhoneNumber;

    tell('a form that is sent after the login has ended is there again after the next one',
        async (visitor, shop) => {
            await visitor.logIn('jsmith');
            const before = await phoneOf(shop, 'jsmith');
            await visitor.field('Phone').fill('0815');
            await visitor.field('Position').fill('Buyer <&> "more"');
            await endLogin(visitor);
            await visitor.press('Save');
            assert.equal(visitor.address(), '/login.asp?url=%2Faccount%2F');
            assert.equal(await visitor.refusal(), 'Your login has ended. Please log in again: what ' +
                'you typed is kept, but for passwords.');
            await visitor.logInHere('jsmith', 'wrong');
            await visitor.logInHere('jsmith');
            assert.equal(visitor.address(), '/account/');
            assert.match(await visitor.refusal(), /^Your login had ended\. Nothing has been done yet/);
            assert.equal(await visitor.field('Phone').inputValue(), '0815');
            assert.equal(await visitor.field('Position').inputValue(), 'Buyer <&> "more"');
            assert.deepEqual(await phoneOf(shop, 'jsmith'), before);
            await visitor.look('account with a kept form');
            await visitor.press('Save');
            assert.equal(await visitor.done(), 'Your account has been saved.');
            assert.deepEqual(await phoneOf(shop, 'jsmith'), ['0815']);
            await visitor.go('/account/');
            assert.equal(await visitor.refusal(), '');
        });

    tell('what somebody has typed is not shown to the next one at the browser',
        async (visitor) => {
            await visitor.logIn('jsmith');
            await visitor.field('Phone').fill('4711');
            await endLogin(visitor);
            await visitor.press('Save');
            await visitor.logInHere('zeros');
            assert.equal(visitor.address(), '/account/');
            assert.equal(await visitor.refusal(), '');
            assert.notEqual(await visitor.field('Phone').inputValue(), '4711');
        });

    tell('what somebody has typed is not said to be kept for the next one', async (visitor) => {
        await visitor.go('/login.asp');
        const answer = await visitor.context.request.post(visitor.url + '/admin/members.asp', {
            form: { sender: 'zeros', Phone: '4711' }, headers: { Origin: visitor.url },
        });
        assert.match(await answer.text(), /is kept/);
        await visitor.logIn('jsmith');
        await visitor.go('/admin/members.asp');
        assert.equal(await visitor.refusal(),
            'Your account may not open this page. You can log in with another one.');
    });

    tell('another site cannot put words into a form that is kept', async (visitor) => {
        await visitor.go('/login.asp');
        const send = (origin) => visitor.context.request.post(visitor.url + '/account/', {
            form: { sender: 'jsmith', 'was-FirstName': '', PhoneNumber: '0190', Password: 'secret' },
            headers: origin ? { Origin: origin } : {},
        });
        for (const origin of ['https://evil.example', 'null', '']) {
            assert.doesNotMatch(await (await send(origin)).text(), /is kept/);
            await visitor.logIn('jsmith');
            assert.equal(await visitor.refusal(), '');
            assert.notEqual(await visitor.field('Phone').inputValue(), '0190');
            await visitor.press('Log out');
        }
        assert.match(await (await send(visitor.url)).text(), /is kept/);
    });
});
