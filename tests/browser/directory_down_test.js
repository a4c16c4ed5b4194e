'use strict';

const assert = require('node:assert/strict');
const { inTheShop } = require('./shop');

const unreachable = 'The directory cannot be reached at the moment. Please try again later.';

inTheShop('directory_down', (tell) => {
    tell('a login while the directory is down says so and leaves nothing half set',
        async (visitor, { directory }) => {
            await visitor.go('/account/');
            await directory.stop();
            await visitor.logInHere('jsmith');
            assert.equal(await visitor.refusal(), unreachable);
            assert.equal(await visitor.loggedInAs(), '');
            assert.deepEqual(await visitor.cookies(), ['orvosession']);
            await visitor.picture('login directory down');
            await visitor.go('/account/');
            assert.equal(visitor.address(), '/login.asp?url=%2Faccount%2F');
            // Nothing tells that there has been a login.
            assert.equal(await visitor.refusal(), '');

            await directory.start();
            await visitor.logInHere('jsmith');
            assert.equal(visitor.address(), '/account/');
            assert.equal(await visitor.text('#cn'), 'jsmith');
        });

    tell('pages of a live login say so, and go on when the directory is back',
        async (visitor, { directory }) => {
            await visitor.logIn('admin');
            await directory.stop();
            await visitor.page.waitForTimeout(300);  // what was read just before still counts
            for (const page of ['/account/', '/admin/members.asp', '/admin/member.asp?cn=glee',
                '/admin/profiles.asp']) {
                await visitor.go(page);
                assert.equal(await visitor.refusal(), unreachable, page);
                assert.equal(await visitor.loggedInAs(), 'admin', page);
            }
            await visitor.picture('directory down');
            await visitor.go('/password.asp');
            await visitor.field('Current password').fill('shop-sample');
            await visitor.field('New password').fill('not just now');
            await visitor.field('New password again').fill('not just now');
            await visitor.press('Change password');
            assert.equal(await visitor.refusal(), unreachable);
            await directory.start();
            assert.equal(await directory.accepts('admin', 'shop-sample'), true);
            await visitor.go('/account/');
            assert.equal(await visitor.text('#cn'), 'admin');
        });

    tell('the health address tells the host alive from the directory reachable',
        async (visitor, { directory }) => {
            const ask = async (address) => {
                const answer = await visitor.context.request.get(visitor.url + address);
                return `${answer.status()} ${await answer.text()}`;
            };
            assert.equal(await ask('/health/live'), '200 alive\n');
            assert.equal(await ask('/health/ready'), '200 ready\n');
            await directory.stop();
            await visitor.page.waitForTimeout(2100);  // an answer is kept for two seconds
            assert.equal(await ask('/health/ready'), '503 directory unreachable\n');
            assert.equal(await ask('/health/live'), '200 alive\n');
            await directory.start();
        });
});
