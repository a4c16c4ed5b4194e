'use strict';

const assert = require('node:assert/strict');
const { inTheShop, refused } = require('./shop');

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
        await visitor.look('members');
        const all = await walk(visitor);
        assert.equal(all.length, 201);
        assert.equal(new Set(all).size, 201);
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
        await visitor.look('members none');
    });

    tell('a role finds those who have it themselves or by their profile', async (visitor) => {
        await visitor.resume('admin');
        await visitor.go('/admin/members.asp');
        await visitor.field('Role').selectOption('Approver');
        await visitor.press('Search');
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
    });

    tell('a search\'s own words are shown as text', async (visitor) => {
        await visitor.resume('admin');
        await visitor.go('/admin/members.asp?name=' +
            encodeURIComponent('"><img src=x onerror="document.title=1">'));
        assert.equal(await visitor.page.locator('img').count(), 0);
        assert.equal(await visitor.field('Name or mail').inputValue(),
            '"><img src=x onerror="document.title=1">');
    });

    tell('locked and disabled accounts are shown and unlocked', async (visitor, shop) => {
        const guessed = await shop.visitor();
        for (let i = 0; i < 3; ++i) await guessed.logIn('awalker', 'wrong');
        await visitor.resume('admin');
        await visitor.go('/admin/members.asp');
        await visitor.field('State').selectOption('locked or disabled');
        await visitor.press('Search');
        assert.deepEqual(await names(visitor), ['awalker', 'retired']);
        assert.deepEqual(await visitor.page.locator('#members td:last-child').allTextContents(),
            ['locked', 'disabled']);
        await visitor.look('members locked');
        await visitor.follow('retired');
        assert.equal(await visitor.text('#state'), 'disabled');
        await visitor.go('/admin/member.asp?cn=awalker');
        assert.match(await visitor.text('#state'), /^locked since \d+ \w+ 2\d{3}, [\d:]{8}$/);
        const since = await visitor.page.locator('#state time').getAttribute('datetime');
        assert.ok(Math.abs(Date.now() - Date.parse(since)) < 300000, since);
        await visitor.look('member locked');
        await visitor.press('Unlock');
        assert.equal(await visitor.done(), 'The account has been unlocked.');
        assert.equal(await visitor.text('#state'), 'Nothing is known against this account.');
        await guessed.logIn('awalker');
        assert.equal(await guessed.loggedInAs(), 'awalker');
    });

    tell('an account is disabled and enabled again', async (visitor, shop) => {
        const own = await shop.visitor();
        await visitor.resume('admin');
        await visitor.go('/admin/member.asp?cn=glee');
        await visitor.press('Disable');
        assert.equal(await visitor.done(), 'The account has been disabled, which counts where the ' +
            'directory\'s password policy locks accounts.');
        assert.equal(await visitor.text('#state'), 'disabled');
        await visitor.look('member disabled');
        await own.logIn('glee');
        assert.equal(await own.refusal(), refused);
        await visitor.press('Enable');
        assert.equal(await visitor.done(), 'The account has been enabled.');
        await own.logIn('glee');
        assert.equal(await own.loggedInAs(), 'glee');
        await visitor.go('/admin/member.asp?cn=admin');
        await visitor.press('Disable');
        assert.equal(await visitor.refusal(), 'This is your own account.');
    });

    tell('the list is a file that a spreadsheet takes for text', async (visitor) => {
        await visitor.resume('admin');
        await visitor.go('/admin/member.asp?cn=glee');
        await visitor.field('First name').fill('=1+1');
        await visitor.field('Last name').fill('Lee "the, best"');
        await visitor.press('Save');
        await visitor.go('/admin/members.asp?name=lee');
        const [download] = await Promise.all([visitor.page.waitForEvent('download'),
            visitor.page.getByRole('link', { name: 'Save list as CSV' }).click()]);
        assert.equal(download.suggestedFilename(), 'members.csv');

        const csv = async (query) => {
            const answer = await visitor.context.request.get(
                `${visitor.url}/admin/members-csv.asp${query}`);
            assert.equal(answer.headers()['content-type'], 'text/csv; charset=utf-8');
            return (await answer.body()).toString();
        };
        assert.equal(await csv('?name=lee'), '\uFEFFUser name,First name,Last name,E-mail,Partner,' +
            'State\r\n"glee","\'=1+1","Lee ""the, best""","grace.lee@shop.example","1001",""\r\n');
        assert.match(await csv('?state=locked'), /"retired","","Retired","","","disabled"\r\n$/);
        const whole = await csv('');
        assert.equal(whole.split('\r\n').length, 1 + 201 + 1);
        assert.ok(whole.includes('"Жанна Жукова"'));
        assert.equal((await csv('?role=4')).split('\r\n').length, 1 + 39 + 1);
    });
});
