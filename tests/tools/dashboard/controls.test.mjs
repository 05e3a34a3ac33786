// Acting as another user from the page: Ben's lock refuses Ada's check-out, and the journal tells
// why. A fault set from the same page is listed as active.
import assert from 'node:assert/strict';
import { test } from 'node:test';
import { openDashboard, screenshot, withDashboard } from './support.mjs';

test("a lock taken as Ben from the page refuses Ada's check-out, and the journal shows code 13", () =>
  withDashboard(async (emulator, browser) => {
    const page = await openDashboard(browser, emulator);
    const bearing = emulator.document('Gearbox/Shaft/bearing.par');
    await page.click('#tabs a[data-view=controls]');
    await page.fill('input[aria-label=User]', 'Ben Okafor');
    await page.fill('input[aria-label=Path]', bearing);
    await page.click('button[data-action=lock]');
    await page.locator('.verdict.ok').waitFor();

    const form = page.locator('.card', { hasText: 'Faults' });
    for (const [label, value] of [['Command', 'GETNEXTID'], ['Fail code', '18'], ['Times', '2']]) {
      await form.getByLabel(label).fill(value);
    }
    await page.click('button[data-action=fault]');
    await form.locator('tbody tr', { hasText: 'GETNEXTID' }).filter({ hasText: '18' }).waitFor();
    // What the page cannot do is told, not hidden.
    await page.fill('input[aria-label=User]', 'Nobody Here');
    await page.click('button[data-action=unlock]');
    await page.locator('.verdict.failed', { hasText: 'no user "Nobody Here"' }).waitFor();
    await screenshot(page, 'controls');

    const run = emulator.host('checkout', bearing);
    assert.equal(run.status, 1, run.out);
    assert.match(run.out, /refused: held by Ben Okafor/);

    await page.click('#tabs a[data-view=locks]');
    await page.locator('#view tbody tr', { hasText: bearing }).filter({ hasText: 'Ben Okafor' }).waitFor();
    await screenshot(page, 'locks');

    await page.click('#tabs a[data-view=journal]');
    await page.check('#errors-only');
    const refusal = page.locator('details.entry.failed').filter({ has: page.locator('.command', { hasText: /^LOCKDESIGNREVISIONS$/ }) });
    await refusal.locator('summary').click();
    assert.equal(await refusal.locator('.chip.error').textContent(), '13 ObjectLocked');
    assert.match(await refusal.locator('pre.answer').textContent(), /Ben Okafor/);
    assert.equal(await page.locator('details.entry:not(.failed)').count(), 0);
    await screenshot(page, 'journal-errors');
    assert.deepEqual(page.failures, []);
  }));
