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
            await visitor.look('login directory down');
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
                '/admin/members-csv.asp', '/admin/profiles.asp', '/admin/profile.asp?cn=Buyers']) {
                await visitor.go(page);
                assert.equal(await visitor.refusal(), unreachable, page);
                assert.equal(await visitor.loggedInAs(), 'admin', page);
                await visitor.look(`down ${page.replace(/\W+/g, ' ')}`);
            }
            // Logins are the site's own affair.
            await visitor.go('/account/logins.asp');
            assert.equal(await visitor.page.locator('#logins tbody tr').count(), 1);
            await visitor.go('/password.asp');
            await visitor.changePassword('shop-sample', 'not just now');
            assert.equal(await visitor.refusal(), unreachable);
            await directory.start();
            assert.equal(await directory.accepts('admin', 'shop-sample'), true);
            await visitor.go('/account/');
            assert.equal(await visitor.text('#cn'), 'admin');
        });

    tell('what has been typed is kept until the directory is back',
        async (visitor, { directory }) => {
            await visitor.logIn('admin');
            const pages = [['/account/', 'Position', 'Your account has been saved.'],
                ['/admin/member.asp?cn=glee', 'Position', 'The member has been saved.'],
                ['/admin/profile.asp?cn=Sales', 'Language', 'The profile has been saved.']];
            for (const [address, field, done] of pages) {
                await visitor.go(address);
                await visitor.field(field).fill('fr');
                await directory.stop();
                await visitor.page.waitForTimeout(300);  // as above
                await visitor.press('Save');
                assert.ok((await visitor.refusal()).includes(unreachable), address);
                assert.equal(await visitor.field(field).inputValue(), 'fr', address);
                await directory.start();
                await visitor.press('Save');
                assert.equal(await visitor.done(), done);
                assert.equal(await visitor.field(field).inputValue(), 'fr', address);
            }
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
