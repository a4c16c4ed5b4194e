// What may be wrong with the looks of a page: axe's findings, and what axe does not look at.
'use strict';

const fs = require('node:fs');

const axe = fs.readFileSync(require.resolve('axe-core/axe.min.js'), 'utf8');
const schemes = ['light', 'dark'];

// Runs in the page, at its present width and colour scheme; an array of sentences.
async function lookAround(isColourAlone) {
    const found = [];
    const complain = (element, words) => found.push(
        `${element.outerHTML.replace(/\s+/g, ' ').slice(0, 100)}: ${words}`);
    const isShown = (element) => element.getClientRects().length > 0;
    const all = (selector) => [...document.querySelectorAll(selector)].filter(isShown);

    const numbers = (colour) => colour.match(/[\d.]+/g).map(Number);
    const luminance = (colour) => {
        const [r, g, b] = numbers(colour).map((part) => {
            const c = part / 255;
            return c <= 0.04045 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4;
        });
        return 0.2126 * r + 0.7152 * g + 0.0722 * b;
    };
    const contrast = (a, b) => {
        const [dark, light] = [luminance(a), luminance(b)].sort((x, y) => x - y);
        return (light + 0.05) / (dark + 0.05);
    };
    const behind = (element) => {
        for (let e = element.parentElement; e; e = e.parentElement) {
            const colour = getComputedStyle(e).backgroundColor;
            if (numbers(colour)[3] !== 0) return colour;
        }
        return 'rgb(255, 255, 255)';
    };
    for (const field of all('input, select, button, .button')) {
        const ratio = contrast(getComputedStyle(field).borderTopColor, behind(field));
        if (field.type !== 'checkbox' && ratio < 3)
            complain(field, `its border has a contrast of ${ratio.toFixed(2)}`);
    }

    if (!isColourAlone) {
        const room = document.documentElement.clientWidth;
        if (document.documentElement.scrollWidth > room)
            found.push(`the page is ${document.documentElement.scrollWidth} wide`);
        document.documentElement.style.fontSize = '200%';
        if (document.documentElement.scrollWidth > room)
            found.push(`with large text the page is ${document.documentElement.scrollWidth} wide`);
        for (const element of all('body, td, dd, p, label, a, button, input:not([type=checkbox]), select')) {
            const { fontSize, display } = getComputedStyle(element);
            if (parseFloat(fontSize) < 24) complain(element, `its text stays as small as ${fontSize}`);
            if (element.matches('td') && display !== 'table-cell' &&
                element.scrollWidth > element.clientWidth)
                complain(element, 'its large text does not fit');
        }
        document.documentElement.style.fontSize = '';
        for (const target of all('a, button, input, select, label.tick')) {
            const { width, height } = target.getBoundingClientRect();
            const isInText = target.matches('p a:not(.button)');
            if (!isInText && (width < 24 || height < 24))
                complain(target, `is ${width} by ${height}`);
        }
        for (const field of all('[aria-invalid], fieldset:has(> .error)')) {
            const ids = (field.getAttribute('aria-describedby') ?? '').split(' ');
            if (!ids.some((id) => document.getElementById(id)?.matches('.error')))
                complain(field, 'nothing says what is wrong with it');
            if (!document.querySelector(`#problem a[href="#${field.id}"]`))
                complain(field, 'the summary does not lead there');
        }
        for (const pointer of document.querySelectorAll('[aria-describedby]'))
            for (const id of pointer.getAttribute('aria-describedby').split(' '))
                if (!document.getElementById(id)) complain(pointer, `there is no ${id}`);
    }

    const result = await window.axe.run(document, {
        resultTypes: ['violations', 'incomplete'],
        ...(isColourAlone && { runOnly: { type: 'rule', values: ['color-contrast'] } }),
        ...(!isColourAlone && { rules: { 'target-size': { enabled: true } } }),
    });
    for (const { id, help, nodes } of [...result.violations, ...result.incomplete])
        found.push(`${id}: ${help}: ${nodes.map((node) => node.html.slice(0, 200)).join(' | ')}`);
    return found;
}

// What is wrong with the page that is open. The second scheme is looked at for its colours alone.
async function findings(page, scheme) {
    if (!await page.evaluate(() => 'axe' in window)) await page.evaluate(axe);
    return page.evaluate(lookAround, scheme !== schemes[0]);
}

module.exports = { findings, schemes };
