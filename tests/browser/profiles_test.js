'use strict';

const assert = require('node:assert/strict');
const { inTheShop } = require('./shop');

const container = 'ou=Profiles,o=Shop';
const names = (visitor) =>
    visitor.page.locator('#profiles tbody tr td:first-child').allTextContents();
const members = (visitor) =>
    visitor.page.locator('#members tbody tr td:first-child').allTextContents();
async function remove(visitor, name) {
    await visitor.go(`/admin/profile.asp?cn=${encodeURIComponent(name)}`);
    await visitor.follow('Delete this profile');
    assert.equal(await visitor.title(), `Delete ${name}`);
    await visitor.press('Delete');
}

inTheShop('profiles', (tell) => {
    tell('the list shows all profiles', async (visitor) => {
        await visitor.resume('admin');
        await visitor.go('/admin/profiles.asp');
        assert.deepEqual((await names(visitor)).sort(), ['Administrators', 'Approvers',
            'Branch Office', 'Buyer\'s Friends', 'Buyers', 'Einkäufer', 'Guests', 'Nobody',
            'Receivers', 'Sales', 'Покупатели']);
        await visitor.look('profiles');
    });

    tell('a profile is created and deleted', async (visitor, { directory }) => {
        await visitor.resume('admin');
        await visitor.go('/admin/profiles.asp');
        await visitor.field('New profile').fill('Night <shift> & "more"');
        await visitor.press('Create');
        assert.equal(await visitor.done(), 'Night <shift> & "more" has been created.');
        assert.equal(await visitor.title(), 'Night <shift> & "more"');
        assert.equal(await visitor.text('#nobody'), 'Nobody has this profile.');
        assert.deepEqual((await directory.search('(cn=Night*)', ['cn'], container))[0].cn,
            ['Night <shift> & "more"']);
        await visitor.follow('All profiles');
        assert.ok((await names(visitor)).includes('Night <shift> & "more"'));
        await visitor.field('New profile').fill('Night <shift> & "more"');
        await visitor.press('Create');
        assert.equal(await visitor.refusal(),
            'Nothing has been created. This name is taken already.');
        await visitor.look('profile refused');
        await remove(visitor, 'Night <shift> & "more"');
        assert.equal(await visitor.done(), 'Night <shift> & "more" has been deleted.');
        assert.deepEqual(await directory.search('(cn=Night*)', ['cn'], container), []);
        await visitor.go('/admin/profile.asp?cn=Night');
        assert.equal(await visitor.refusal(), 'There is no such profile.');
    });

    tell('a profile\'s roles and applications are edited', async (visitor, shop) => {
        await visitor.resume('admin');
        await visitor.go('/admin/profile.asp?cn=Sales');
        const member = await shop.visitor();
        await member.resume('admin');
        await member.go('/admin/profile.asp?cn=Sales');
        assert.equal(await visitor.field('Sales').isChecked(), true);
        await visitor.field('Financial').check();
        await visitor.field('Applications').fill('5, 1, 1');
        await visitor.press('Save');
        assert.equal(await visitor.done(), 'The profile has been saved.');
        assert.equal(await visitor.field('Applications').inputValue(), '1, 5');
        const [sales] = await shop.directory.search('(cn=Sales)', ['OrvoRole', 'OrvoApps'], container);
        assert.ok(sales.OrvoRole.includes('5'));
        assert.deepEqual(sales.OrvoApps.sort(), ['1', '5']);

        await member.field('Language').fill('an unknown language');
        await member.press('Save');
        assert.equal(await member.refusal(), 'Nothing has been saved. ' +
            'Language: This is longer than 16 characters.');
        await member.look('profile with errors');
        await member.field('Language').fill('de');
        await member.press('Save');
        assert.match(await member.refusal(), /^Somebody else has changed this meanwhile\./);
        await member.look('profile changed meanwhile');
        await member.press('Save');
        assert.equal(await member.done(), 'The profile has been saved.');
        assert.equal(await member.field('Financial').isChecked(), true);
    });

    tell('members of a profile are listed, added, moved and taken out', async (visitor, shop) => {
        const profileOf = async (cn) =>
            (await shop.directory.search(`(cn=${cn})`, ['ProfileCN']))[0].ProfileCN?.[0];
        await visitor.resume('admin');
        await visitor.go('/admin/profile.asp?cn=Buyers');
        assert.equal((await members(visitor)).length, 20);
        await visitor.look('profile');
        await visitor.follow('Next page');
        await visitor.follow('From the beginning');

        await visitor.go('/admin/profile.asp?cn=Nobody');
        const add = async (name) => {
            await visitor.field('Add a member').fill(name);
            await visitor.press('Add');
        };
        await add('nobody at all');
        assert.equal(await visitor.refusal(), 'Nobody has been added. ' +
            'There is no such member, or the member\'s profile is not there.');
        assert.equal(await visitor.field('Add a member').inputValue(), 'nobody at all');
        await add('twomails');
        assert.equal(await visitor.done(), 'twomails has been added.');
        assert.equal(await profileOf('twomails'), 'Nobody');
        await add('twomails');
        assert.equal(await visitor.refusal(),
            'Nobody has been added. twomails is a member of this profile already.');
        await visitor.look('profile nobody added');
        await add('glee');
        assert.equal(await visitor.title(), 'Move glee');
        assert.equal(await profileOf('glee'), 'Approvers');
        await visitor.look('profile move');
        await visitor.press('Move');
        assert.equal(await visitor.done(), 'glee has been added.');
        assert.equal(await profileOf('glee'), 'Nobody');
        assert.deepEqual(await members(visitor), ['glee', 'twomails']);
        await visitor.press('Take out twomails');
        assert.equal(await visitor.done(), 'twomails has been taken out.');
        assert.equal(await profileOf('twomails'), undefined);
        assert.deepEqual(await members(visitor), ['glee']);
        await visitor.press('Take out glee');
    });

    tell('a profile that users or local administrators have is kept', async (visitor, shop) => {
        await visitor.resume('admin');
        for (const name of ['Buyers', 'Branch Office', 'Buyer\'s Friends']) {
            await remove(visitor, name);
            assert.equal(await visitor.refusal(),
                `${name} is in use: members have this profile. It has not been deleted.`);
            assert.equal(
                (await shop.directory.search(`(cn=${name})`, ['cn'], container)).length, 1);
        }
        await remove(visitor, 'Nobody');
        assert.equal(await visitor.done(), 'Nobody has been deleted.');
    });
});
