'use strict';

const assert = require('node:assert/strict');
const { inTheShop } = require('./shop');

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
        await visitor.picture('account saved', { fullPage: true });

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
        const change = async (old, wanted, again) => {
            await visitor.field('Current password').fill(old);
            await visitor.field('New password').fill(wanted);
            await visitor.field('New password again').fill(again);
            await visitor.press('Change password');
            return visitor.refusal();
        };
        assert.equal(await change('shop-sample', 'first words', 'other words'),
            'The new password is not the same twice.');
        assert.equal(await change('wrong', 'first words', 'first words'),
            'The current password is not correct.');
        assert.equal(await directory.accepts('jsmith', 'shop-sample'), true);
        assert.equal(await change('shop-sample', 'short', 'short'),
            'The directory refuses it. Password fails quality checking policy');
        await visitor.picture('password refused');
        assert.equal(await directory.accepts('jsmith', 'shop-sample'), true);
    });

    tell('after a password change the login goes on and only the new one counts',
        async (visitor, shop) => {
            await visitor.logIn('glee');
            await visitor.follow('Change password');
            await visitor.field('Current password').fill('shop-sample');
            await visitor.field('New password').fill('a longer word');
            await visitor.field('New password again').fill('a longer word');
            await visitor.press('Change password');
            assert.equal(await visitor.done(), 'Your password has been changed.');
            assert.equal(visitor.address(), '/account/');
            await visitor.page.reload();
            assert.equal(await visitor.text('#cn'), 'glee');
            await visitor.field('Position').fill('Chief approver');
            await visitor.press('Save');
            assert.equal(await visitor.done(), 'Your account has been saved.');

            const later = await shop.visitor();
            await later.logIn('glee', 'shop-sample');
            assert.equal(await later.refusal(), 'User name or password is wrong.');
            await later.logInHere('glee', 'a longer word');
            assert.equal(await later.loggedInAs(), 'glee');
        });

    tell('a login whose password was changed elsewhere is told so', async (visitor, shop) => {
        await visitor.logIn('awalker');
        const elsewhere = await shop.visitor();
        await elsewhere.go('/password.asp');
        await elsewhere.field('User name').fill('awalker');
        await elsewhere.field('Current password').fill('shop-sample');
        await elsewhere.field('New password').fill('changed elsewhere');
        await elsewhere.field('New password again').fill('changed elsewhere');
        await elsewhere.press('Change password');
        assert.equal(elsewhere.address(), '/login.asp');
        await visitor.go('/account/');
        assert.equal(await visitor.refusal(), 'The directory does not accept your name and ' +
            'password any more. Please log in again.');
        await visitor.logIn('awalker', 'changed elsewhere');
        assert.equal(await visitor.refusal(), '');
        assert.equal(await visitor.text('#cn'), 'awalker');
    });
});
