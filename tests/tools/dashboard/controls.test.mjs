// Acting from the page: Ben's lock refuses Ada's check-out, a fault set in the form holds that
// check-out back while its client is seen registered, and the journal tells both.
import assert from 'node:assert/strict';
import { test } from 'node:test';
import { openDashboard, screenshot, withDashboard } from './support.mjs';

const Latency = 1500;

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
    for (const [label, value] of [['Command', 'LOCKDESIGNREVISIONS'], ['Latency ms', String(Latency)], ['Times', '1']]) {
      await form.getByLabel(label).fill(value);
    }
    await page.click('button[data-action=fault]');
    await form.locator('tbody tr', { hasText: 'LOCKDESIGNREVISIONS' }).filter({ hasText: `${Latency} ms` }).waitFor();
    // What the page cannot do is told, not hidden.
    await page.fill('input[aria-label=User]', 'Nobody Here');
    await page.click('button[data-action=unlock]');
    await page.locator('.verdict.failed', { hasText: 'no user "Nobody Here"' }).waitFor();
    await screenshot(page, 'controls');

    // While the fault holds the check-out back, its client is registered, and Ben's lock listed.
    const checkout = emulator.host('checkout', bearing);
    await page.click('#tabs a[data-view=locks]');
    await page.locator('#view tbody tr', { hasText: String(checkout.pid) }).waitFor();
    await page.locator('#view tbody tr', { hasText: 'bearing.par' }).locator('.chip.lock', { hasText: 'Ben Okafor' }).waitFor();
    await screenshot(page, 'locks');
    const run = await checkout;
    assert.equal(run.status, 1, run.out);
    assert.match(run.out, /refused: held by Ben Okafor/);

    await page.click('#tabs a[data-view=journal]');
    const refusal = page.locator('details.entry.failed').filter({ has: page.locator('.command', { hasText: /^LOCKDESIGNREVISIONS$/ }) });
    await refusal.locator('summary').click();
    assert.deepEqual(await refusal.locator('.chip.error, .chip.fault').allTextContents(), ['13 ObjectLocked', `fault: +${Latency} ms`]);
    assert.match(await refusal.locator('pre.answer').textContent(), /Ben Okafor/);
    await screenshot(page, 'journal');
    await page.check('#errors-only');
    await page.locator('details.entry:not(.failed)').first().waitFor({ state: 'detached' });
    assert.equal(await refusal.count(), 1);
    assert.deepEqual(page.failures, []);
  }));
