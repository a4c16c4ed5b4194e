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
        await first.picture('login ended');
        for (const visitor of [second, other]) {
            await visitor.page.reload();
            assert.equal(visitor.address(), '/account/');
        }

        await first.logInHere('jsmith');
        assert.equal(first.address(), '/account/');
        await second.page.reload();
        assert.equal(second.address(), '/login.asp?url=%2Faccount%2F');
    });

    tell('a login in the same browser takes the former one\'s place', async (visitor) => {
        await visitor.logIn('jsmith');
        await visitor.logIn('glee');
        assert.equal(await visitor.loggedInAs(), 'glee');
        assert.equal(await visitor.text('#cn'), 'glee');
        assert.equal((await visitor.page.locator('dd').allTextContents())[2], 'Approvers');
    });
});
