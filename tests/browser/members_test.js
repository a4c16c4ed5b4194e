'use strict';

const assert = require('node:assert/strict');
const { inTheShop } = require('./shop');

const names = (visitor) =>
    visitor.page.locator('#members tbody tr td:first-child').allTextContents();

// Walks from here to the last page; all names in the order shown.
async function walk(visitor) {
    const all = [];
    for (;;) {
        const page = await names(visitor);
        assert.ok(page.length <= 20);
        all.push(...page);
        if (await visitor.page.locator('#next').count() === 0) return all;
        await visitor.follow('Next page');
    }
}

inTheShop('members', (tell) => {
    tell('the list shows every member once, page after page', async (visitor, { directory }) => {
        await visitor.resume('admin');
        await visitor.go('/admin/members.asp');
        assert.equal((await names(visitor)).length, 20);
        await visitor.picture('members');
        const all = await walk(visitor);
        assert.equal(all.length, 199);
        assert.equal(new Set(all).size, 199);
        const entries = await directory.search('(OrvoUserType=*)', ['cn']);
        assert.deepEqual([...all].sort(), entries.map((entry) => entry.cn[0]).sort());
        await visitor.follow('From the beginning');
        assert.equal((await names(visitor))[0], '#1 Buyer');
    });

    tell('a search finds parts of names and mail addresses', async (visitor) => {
        await visitor.resume('admin');
        await visitor.go('/admin/members.asp');
        const search = async (words) => {
            await visitor.field('Name or mail').fill(words);
            await visitor.press('Search');
            return names(visitor);
        };
        assert.deepEqual(await search('SMITH'), ['Ann "Andy" <Smith>; =', 'jsmith', 'Smith, John']);
        assert.deepEqual(await search('ada.admin@'), ['admin']);
        assert.deepEqual(await search('山田'), ['山田 太郎']);
        assert.deepEqual(await search('(night) *'), ['Temp (night) *']);
        assert.deepEqual(await search('back\\'), ['back\\slash']);
        assert.deepEqual(await search('*'), ['Temp (night) *']);
        assert.deepEqual(await search('nobody at all'), []);
        assert.equal(await visitor.text('#nobody'), 'Nobody was found.');
    });

    tell('a role finds those who have it themselves or by their profile', async (visitor) => {
        await visitor.resume('admin');
        await visitor.go('/admin/members.asp');
        await visitor.choice('Role').selectOption('Approver');
        await visitor.press('Search');
        await visitor.picture('members by role');
        const approvers = await walk(visitor);
        assert.equal(new Set(approvers).size, approvers.length);
        assert.equal(approvers.length, 39);
        assert.ok(approvers.includes('glee'));
        await visitor.field('Name or mail').fill('lee');
        await visitor.press('Search');
        assert.deepEqual(await names(visitor), ['glee']);
    });

    tell('a name with signs of HTML is shown as text and leads to its member', async (visitor) => {
        await visitor.resume('admin');
        await visitor.go('/admin/members.asp?name=andy');
        assert.deepEqual(await names(visitor), ['Ann "Andy" <Smith>; =']);
        await visitor.follow('Ann "Andy" <Smith>; =');
        assert.equal(await visitor.title(), 'Ann "Andy" <Smith>; =');
        assert.equal(await visitor.field('Last name').inputValue(), 'Smith');
        await visitor.field('Position').fill('"Buyer" <em>');
        await visitor.press('Save');
        assert.equal(await visitor.done(), 'The member has been saved.');
        assert.equal(await visitor.field('Position').inputValue(), '"Buyer" <em>');
        assert.equal(await visitor.page.locator('em').count(), 0);
        await visitor.picture('member with signs');
    });

    tell('a search\'s own words are shown as text', async (visitor) => {
        await visitor.resume('admin');
        await visitor.go('/admin/members.asp?name=' +
            encodeURIComponent('"><img src=x onerror="document.title=1">'));
        assert.equal(await visitor.page.locator('img').count(), 0);
        assert.equal(await visitor.field('Name or mail').inputValue(),
            '"><img src=x onerror="document.title=1">');
    });

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
            await visitor.choice('Profile').selectOption('Buyers');
            await visitor.field('Sales').check();
            await visitor.press('Create');
            assert.equal(visitor.address(), '/admin/member.asp?cn=tina');
            assert.equal(await visitor.done(), 'The member has been created.');
            assert.equal(await visitor.field('Spend limit').inputValue(), '750.25');
            await visitor.picture('member created');
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

            await visitor.page.getByText('Delete this member').click();
            await visitor.press('Delete');
            assert.equal(visitor.address(), '/admin/members.asp');
            assert.equal(await visitor.done(), 'tina has been deleted.');
            assert.deepEqual(await directory.search('(cn=tina)', ['cn']), []);
            await visitor.go('/admin/member.asp?cn=tina');
            assert.equal(await visitor.refusal(), 
                'There is no such member, or the member\'s profile is not there.');
            await herself.page.reload();
            assert.equal(await herself.refusal(), 'The directory does not accept your name and ' +
                'password any more. Please log in again.');
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
        await visitor.resume('admin');
        await visitor.go('/admin/member.asp?cn=jsmith');
        await visitor.field('Approver limit').fill('lots');
        await visitor.press('Save');
        assert.equal(await visitor.refusal(), 'Approver limit: "lots" is not an amount.');
        assert.equal(await visitor.field('Approver limit').inputValue(), 'lots');
        await visitor.field('Approver limit').fill('0');
        await visitor.field('Own applications').fill('1 two');
        await visitor.press('Save');
        assert.equal(await visitor.refusal(), 'Applications: "two" is not a number.');
        await visitor.go('/admin/member.asp');
        await visitor.field('User name').fill('never');
        await visitor.field('Password').fill('never mind');
        await visitor.field('Spend limit').fill('-1');
        await visitor.press('Create');
        assert.equal(await visitor.refusal(), 'Spend limit: "-1" is not an amount.');
        assert.deepEqual(await directory.search('(cn=never)', ['cn']), []);
    });

    tell('a name that is taken, or a password that is too short, creates nobody',
        async (visitor, { directory }) => {
            await visitor.resume('admin');
            await visitor.go('/admin/member.asp');
            await visitor.field('User name').fill('jsmith');
            await visitor.field('Password').fill('long enough');
            await visitor.press('Create');
            assert.equal(await visitor.refusal(), 'New member: This name is taken already.');
            await visitor.field('User name').fill('shorty');
            await visitor.field('Password').fill('short');
            await visitor.press('Create');
            assert.equal(await visitor.refusal(),
                'New member: The directory refuses it. Password fails quality checking policy');
            await visitor.picture('member refused');
            assert.deepEqual(await directory.search('(cn=shorty)', ['cn']), []);
        });

    tell('a member whose profile is not there is explained', async (visitor) => {
        await visitor.resume('admin');
        await visitor.go('/admin/member.asp?cn=lonely');
        assert.equal(await visitor.refusal(),
            'There is no such member, or the member\'s profile is not there.');
    });
});
