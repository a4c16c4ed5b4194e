'use strict';

const assert = require('node:assert/strict');
const { inTheShop, refused } = require('./shop');

inTheShop('member', (tell) => {
    tell('a member is created, logs in after choosing a password, and is deleted',
        async (visitor, shop) => {
            const { directory } = shop;
            await visitor.resume('admin');
            await visitor.go('/admin/members.asp');
            await visitor.follow('New member');
            await visitor.field('User name').fill('tina');
            await visitor.field('Password').fill('first password');
            await visitor.field('First name').fill('Tina');
            await visitor.field('Last name').fill('Turner & Co');
            await visitor.field('E-mail').fill('tina@shop.example');
            await visitor.field('Spend limit').fill('750.25');
            await visitor.field('Profile').selectOption('Buyers');
            await visitor.field('Sales').check();
            await visitor.press('Create');
            assert.equal(visitor.address(), '/admin/member.asp?cn=tina');
            assert.equal(await visitor.done(), 'The member has been created.');
            assert.equal(await visitor.field('Spend limit').inputValue(), '750.25');
            await visitor.look('member created');
            const [tina] = await directory.search('(cn=tina)',
                ['sn', 'mail', 'SpendLimit', 'OrvoRole', 'ProfileCN', 'OrvoUserType', 'OrvoApps']);
            assert.deepEqual(tina, { dn: ['cn=tina,ou=Users,o=Shop'], sn: ['Turner & Co'],
                mail: ['tina@shop.example'], SpendLimit: ['750.25'], OrvoRole: ['7'],
                ProfileCN: ['Buyers'], OrvoUserType: ['1'] });

            const herself = await shop.visitor();
            await herself.logIn('tina', 'first password');
            assert.equal(await herself.loggedInAs(), 'tina');
            assert.equal(await herself.text('#roles'), 'Sales');
            assert.equal(await herself.text('#limit'), '750.25');

            await visitor.field('Sales').uncheck();
            await visitor.field('Approver').check();
            await visitor.field('Receiver').check();
            await visitor.field('Spend limit').fill('12000');
            await visitor.field('Own applications').fill('1, 5');
            await visitor.press('Save');
            assert.equal(await visitor.done(), 'The member has been saved.');
            await herself.page.reload();
            assert.equal(await herself.text('#roles'), 'Approver, Receiver');
            assert.equal(await herself.text('#limit'), '12\u2009000.00');
            await visitor.field('Approver').uncheck();
            await visitor.field('Receiver').uncheck();
            await visitor.press('Save');
            await herself.page.reload();
            assert.equal(await herself.text('#roles'), 'Buyer, Requisitioner');

            await visitor.follow('Delete this member');
            await visitor.look('member to be deleted');
            await visitor.follow('Cancel');
            assert.equal(visitor.address(), '/admin/member.asp?cn=tina');
            await visitor.follow('Delete this member');
            await visitor.press('Delete');
            assert.equal(visitor.address(), '/admin/members.asp');
            assert.equal(await visitor.done(), 'tina has been deleted.');
            assert.deepEqual(await directory.search('(cn=tina)', ['cn']), []);
            await visitor.go('/admin/member.asp?cn=tina');
            assert.equal(await visitor.refusal(), 
                'There is no such member, or the member\'s profile is not there.');
            await herself.page.reload();
            assert.equal(herself.address(), '/login.asp?url=%2Faccount%2F');
            assert.equal(await herself.refusal(), 'Your login has ended. Please log in again.');
        });

    tell('saving a member unchanged changes nothing', async (visitor, { directory }) => {
        await visitor.resume('admin');
        const entry = (cn) => directory.search(`(cn=${cn})`, ['*', 'modifyTimestamp']);
        for (const cn of ['jsmith', 'glee', 'norole', 'barest', 'bigpartner']) {
            const before = await entry(cn);
            await visitor.go(`/admin/member.asp?cn=${cn}`);
            await visitor.press('Save');
            assert.equal(await visitor.done(), 'The member has been saved.', cn);
            assert.deepEqual(await entry(cn), before, cn);
        }
    });

    tell('what is no number is refused with its field', async (visitor, { directory }) => {
        const attributes = ['givenName', 'ApproverLimit', 'OrvoApps'];
        const before = await directory.search('(cn=jsmith)', attributes);
        await visitor.resume('admin');
        await visitor.go('/admin/member.asp?cn=jsmith');
        await visitor.field('First name').fill('Nobody');
        await visitor.field('Approver limit').fill('lots');
        await visitor.field('Own applications').fill('1 two');
        await visitor.press('Save');
        assert.equal(await visitor.refusal(), 'Nothing has been saved. ' +
            'Approver limit: "lots" is not an amount. Own applications: "two" is not a number.');
        assert.equal(await visitor.field('Approver limit').inputValue(), 'lots');
        assert.equal(await visitor.field('First name').inputValue(), 'Nobody');
        assert.deepEqual(await directory.search('(cn=jsmith)', attributes), before);
        await visitor.go('/admin/member.asp');
        await visitor.field('Spend limit').fill('-1');
        await visitor.press('Create');
        assert.equal(await visitor.refusal(), 'Nobody has been created. ' +
            'User name: A user name is needed. Password: A password is needed. ' +
            'Spend limit: "-1" is not an amount.');
        await visitor.look('member with errors');
    });

    tell('a name that is taken, or a password that is too short, creates nobody',
        async (visitor, { directory }) => {
            await visitor.resume('admin');
            await visitor.go('/admin/member.asp');
            await visitor.look('member new');
            await visitor.field('User name').fill('jsmith');
            await visitor.field('Password').fill('long enough');
            await visitor.press('Create');
            assert.equal(await visitor.refusal(),
                'Nobody has been created. User name: This name is taken already.');
            await visitor.field('User name').fill('shorty');
            await visitor.field('Password').fill('short');
            await visitor.press('Create');
            assert.equal(await visitor.refusal(), 'Nobody has been created. Password: ' +
                'The directory refuses it. Password fails quality checking policy');
            assert.deepEqual(await directory.search('(cn=shorty)', ['cn']), []);
        });

    // No browser sends a role twice by itself; the directory refuses it.
    const withRolesTwice = (visitor) => visitor.page.locator('[name=was-OrvoRoles]')
        .evaluate((field) => { field.value = '90, 90'; });

    tell('a new member whom the directory does not take as a whole is not left there',
        async (visitor, { directory }) => {
            await visitor.resume('admin');
            await visitor.go('/admin/member.asp');
            await visitor.field('User name').fill('half');
            await visitor.field('Password').fill('long enough');
            await visitor.field('First name').fill('Half');
            await withRolesTwice(visitor);
            await visitor.field('Approver').check();
            await visitor.press('Create');
            assert.match(await visitor.refusal(), /^Nobody has been created\. Own roles.*exists/);
            assert.equal(await visitor.field('First name').inputValue(), 'Half');
            assert.deepEqual(await directory.search('(cn=half)', ['cn']), []);
        });

    tell('what the directory has taken before it refuses something is put back',
        async (visitor, { directory }) => {
            const attributes = ['givenName', 'mail', 'PhoneNumber', 'CompanyName', 'SpendLimit'];
            const before = await directory.search('(cn=local)', attributes);
            // A local administrator may change some of the own attributes, but not the company.
            await visitor.logIn('local');
            await visitor.go('/admin/member.asp?cn=local');
            await visitor.field('First name').fill('Somebody');
            await visitor.field('E-mail').fill('');
            await visitor.field('Phone').fill('123');
            await visitor.field('Company').fill('Other & Sons');
            await visitor.field('Spend limit').fill('1000000');
            await visitor.press('Save');
            assert.equal(await visitor.refusal(),
                'Nothing has been saved. Company: You are not allowed to do this.');
            assert.equal(await visitor.field('First name').inputValue(), 'Somebody');
            assert.deepEqual(await directory.search('(cn=local)', attributes), before);
        });

    tell('of several mail addresses the form shows one, and the others stay',
        async (visitor, { directory }) => {
            await visitor.resume('admin');
            await visitor.go('/admin/member.asp?cn=twomails');
            const shown = await visitor.field('E-mail').inputValue();
            await visitor.field('E-mail').fill('third@shop.example');
            await visitor.press('Save');
            const [{ mail }] = await directory.search('(cn=twomails)', ['mail']);
            assert.deepEqual(mail.sort(), ['first@shop.example', 'second@shop.example']
                .filter((address) => address !== shown).concat('third@shop.example').sort());
        });

    tell('roles that somebody else has changed meanwhile are shown, and asked about',
        async (visitor, shop) => {
            await visitor.resume('admin');
            await visitor.go('/admin/member.asp?cn=norole');
            const other = await shop.visitor();
            await other.resume('admin');
            await other.go('/admin/member.asp?cn=norole');
            await other.field('Sales').check();
            await other.press('Save');
            await visitor.field('Approver').check();
            await visitor.press('Save');
            assert.match(await visitor.refusal(), new RegExp('Own roles: Changed meanwhile from nothing to ' +
                '"Sales"\\. Saving replaces that with "Approver"\\.$'));
            assert.equal(await visitor.field('Sales').isChecked(), false);
            await visitor.field('Sales').check();
            await visitor.press('Save');
            assert.equal(await visitor.done(), 'The member has been saved.');
            assert.deepEqual((await shop.directory.search('(cn=norole)', ['OrvoRole']))[0].OrvoRole
                .sort(), ['4', '7']);
        });

    tell('a new password is shown once, and has to be changed', async (visitor, shop) => {
        await visitor.resume('admin');
        await visitor.go('/admin/member.asp?cn=jsmith');
        await visitor.follow('New password');
        await visitor.look('member to get a new password');
        await visitor.press('Replace password');
        assert.equal(await visitor.done(), 'The password has been replaced.');
        const password = await visitor.text('#new-password');
        assert.match(password, /^[A-HJ-NP-Za-km-z2-9]{16}$/);
        assert.equal(await visitor.text('#state'), 'must choose a password');
        await visitor.look('member with a new password');
        await visitor.page.reload();
        assert.equal(await visitor.page.locator('#new-password').count(), 0);
        await visitor.go('/admin/members.asp?state=reset');
        assert.equal(await visitor.page.getByRole('link', { name: 'jsmith' }).count(), 1);

        const himself = await shop.visitor();
        await himself.logIn('jsmith');
        assert.equal(await himself.refusal(), refused);
        await himself.logInHere('jsmith', password);
        await himself.follow('Choose a new password');
        await himself.changePassword(password, 'my own words');
        await himself.logInHere('jsmith', 'my own words');
        assert.equal(await himself.loggedInAs(), 'jsmith');
    });

    tell('nobody deletes or resets the own account here', async (visitor, { directory }) => {
        await visitor.resume('admin');
        for (const [ask, button] of [['remove', 'Delete'], ['reset', 'Replace password']]) {
            await visitor.go(`/admin/member.asp?cn=ADMIN&ask=${ask}`);
            await visitor.press(button);
            assert.equal(await visitor.refusal(), 'This is your own account.');
        }
        assert.equal(await directory.accepts('admin', 'shop-sample'), true);
    });

    tell('a member whose profile is not there is explained', async (visitor) => {
        await visitor.resume('admin');
        await visitor.go('/admin/member.asp?cn=lonely');
        assert.equal(await visitor.refusal(),
            'There is no such member, or the member\'s profile is not there.');
    });
});
