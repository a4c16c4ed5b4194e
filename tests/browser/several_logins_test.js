'use strict';

const assert = require('node:assert/strict');
const { inTheShop } = require('./shop');

inTheShop('several_logins', (tell) => {
    tell('with MultiLogin=1 both logins of a user live', async (first, shop) => {
        const second = await shop.visitor();
        await first.logIn('jsmith');
        await second.logIn('jsmith');
        for (const visitor of [first, second]) {
            await visitor.page.reload();
            assert.equal(visitor.address(), '/account/');
            assert.equal(await visitor.text('#cn'), 'jsmith');
        }
        await second.press('Log out');
        await first.page.reload();
        assert.equal(await first.text('#cn'), 'jsmith');
    });

    tell('with MultiLogin=0 the second login ends the first', async (_, shop) => {
        const url = await shop.serve({ multiLogin: 0 });
        const [first, second, other] =
            [await shop.visitor(url), await shop.visitor(url), await shop.visitor(url)];
        await first.logIn('jsmith');
        await other.logIn('glee');
        await second.logIn('JSmith');
        assert.equal(await second.text('#cn'), 'jsmith');

        await first.page.reload();
        assert.equal(first.address(), '/login.asp?url=%2Faccount%2F');
        assert.equal(await first.refusal(), 'Your login has ended. Please log in again.');
        assert.equal(await first.loggedInAs(), '');
        await first.look('login ended');
        for (const visitor of [second, other]) {
            await visitor.page.reload();
            assert.equal(visitor.address(), '/account/');
        }

        await first.logInHere('jsmith');
        assert.equal(first.address(), '/account/');
        await second.page.reload();
        assert.equal(second.address(), '/login.asp?url=%2Faccount%2F');
    });

    tell('a user sees the own logins and ends them', async (first, shop) => {
        const [second, third, other] =
            [await shop.visitor(), await shop.visitor(), await shop.visitor()];
        await other.logIn('glee');
        for (const visitor of [third, second, first]) await visitor.logIn('awalker');
        const rows = first.page.locator('#logins tbody tr');
        await first.follow('My logins');
        assert.equal(await rows.count(), 3);
        assert.match(await rows.nth(0).textContent(), /this one/);
        await first.look('logins');
        await first.press('End login 2');
        assert.equal(await first.done(), 'The login has been ended.');
        assert.equal(await rows.count(), 2);
        await second.page.reload();
        assert.equal(second.address(), '/login.asp?url=%2Faccount%2F');
        assert.equal(await second.refusal(), 'Your login has ended. Please log in again.');
        await third.page.reload();
        assert.equal(third.address(), '/account/');

        // Somebody else's cannot be ended, nor one that has ended already.
        const stale = await first.page.getByRole('button', { name: 'End login 2', exact: true })
            .getAttribute('value');
        await other.go('/account/logins.asp');
        assert.equal(await other.page.locator('#logins tbody tr').count(), 1);
        const token = await other.page.locator('[name=token]').first().inputValue();
        const answer = await other.context.request.post(`${other.url}/account/logins.asp`,
            { form: { token, do: stale } });
        assert.match(await answer.text(), /This login has ended already/);
        await third.page.reload();
        assert.equal(third.address(), '/account/');
        await first.press('End all others');
        assert.equal(await first.done(), 'Your other logins have been ended.');
        assert.equal(await rows.count(), 1);
        await third.page.reload();
        assert.equal(third.address(), '/login.asp?url=%2Faccount%2F');
        await second.logInHere('awalker');
        await first.page.reload();
        await first.page.getByRole('button', { name: 'End login 1', exact: true })
            .evaluate((button, id) => { button.value = id; }, stale);
        await first.press('End login 1');
        assert.equal(await first.refusal(), 'This login has ended already.');
        await other.page.reload();
        assert.equal(await other.loggedInAs(), 'glee');
    });

    tell('a login in the same browser takes the former one\'s place', async (visitor) => {
        await visitor.logIn('jsmith');
        await visitor.logIn('glee');
        assert.equal(await visitor.loggedInAs(), 'glee');
        assert.equal(await visitor.text('#cn'), 'glee');
        assert.equal((await visitor.page.locator('dd').allTextContents())[2], 'Approvers');
    });
});
