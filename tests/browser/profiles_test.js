'use strict';

const assert = require('node:assert/strict');
const { inTheShop } = require('./shop');

const container = 'ou=Profiles,o=Shop';
const names = (visitor) =>
    visitor.page.locator('#profiles tbody tr td:first-child').allTextContents();
const remove = (visitor, name) => visitor.open(visitor.page.getByRole('row')
    .filter({ has: visitor.page.getByRole('cell', { name, exact: true }) })
    .getByRole('button', { name: 'Delete' }));

inTheShop('profiles', (tell) => {
    tell('the list shows all profiles', async (visitor) => {
        await visitor.resume('admin');
        await visitor.go('/admin/profiles.asp');
        assert.deepEqual((await names(visitor)).sort(), ['Administrators', 'Approvers',
            'Branch Office', 'Buyer\'s Friends', 'Buyers', 'Einkäufer', 'Guests', 'Nobody',
            'Receivers', 'Sales', 'Покупатели']);
        await visitor.picture('profiles');
    });

    tell('a profile is created and deleted', async (visitor, { directory }) => {
        await visitor.resume('admin');
        await visitor.go('/admin/profiles.asp');
        await visitor.field('New profile').fill('Night <shift> & "more"');
        await visitor.press('Create');
        assert.equal(await visitor.done(), 'Night <shift> & "more" has been created.');
        assert.ok((await names(visitor)).includes('Night <shift> & "more"'));
        assert.deepEqual((await directory.search('(cn=Night*)', ['cn'], container))[0].cn,
            ['Night <shift> & "more"']);
        await visitor.field('New profile').fill('Night <shift> & "more"');
        await visitor.press('Create');
        assert.equal(await visitor.refusal(), 'This name is taken already.');
        await remove(visitor, 'Night <shift> & "more"');
        assert.equal(await visitor.done(), 'Night <shift> & "more" has been deleted.');
        assert.deepEqual(await directory.search('(cn=Night*)', ['cn'], container), []);
    });

    tell('a profile that users or local administrators have is kept', async (visitor) => {
        await visitor.resume('admin');
        await visitor.go('/admin/profiles.asp');
        for (const name of ['Buyers', 'Branch Office']) {
            await remove(visitor, name);
            assert.equal(await visitor.refusal(),
                `${name} is in use: members have this profile. It has not been deleted.`);
            assert.ok((await names(visitor)).includes(name));
        }
        await visitor.picture('profile in use');
        await remove(visitor, 'Nobody');
        assert.equal(await visitor.done(), 'Nobody has been deleted.');
    });
});
