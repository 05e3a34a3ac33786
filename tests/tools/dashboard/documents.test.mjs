// The documents view against the example workspace, and a check-out made elsewhere arriving on the
// open page and in its journal.
import assert from 'node:assert/strict';
import { test } from 'node:test';
import { openDashboard, screenshot, withDashboard, workspaceImport } from './support.mjs';

const rowsOf = (page) =>
  page.locator('#view tbody tr').evaluateAll((rows) => rows.map((row) => [row.cells[0].textContent, row.cells[5].textContent]));

test('the documents view lists every document of the workspace with its lock holder', () =>
  withDashboard(async (emulator, browser) => {
    const page = await openDashboard(browser, emulator);
    await page.locator('#view tbody tr').first().waitFor();
    const holders = new Map(workspaceImport.locks.map((lock) => [lock.file, lock.user]));
    const expected = workspaceImport.documents.map((d) => [emulator.document(d.file), holders.get(d.file) || 'free']);
    const byPath = (a, b) => a[0].localeCompare(b[0]);
    assert.deepEqual((await rowsOf(page)).sort(byPath), expected.sort(byPath));
    // The search narrows the list through the server.
    await page.fill('input[type=search]', 'BEARING');
    await page.waitForFunction(() => document.querySelectorAll('#view tbody tr').length === 1);
    assert.deepEqual(await rowsOf(page), [[emulator.document('Gearbox/Shaft/bearing.par'), 'free']]);
    assert.deepEqual(page.failures, []);
  }));

test('a check-out through vanto_host shows without reload and its request and answer are in the journal', () =>
  withDashboard(async (emulator, browser) => {
    const page = await openDashboard(browser, emulator);
    await page.evaluate(() => (window.sameDocument = true));
    const shaft = emulator.document('Gearbox/Shaft/shaft.par');
    const run = await emulator.host('checkout', shaft);
    assert.equal(run.status, 0, run.err);
    await page.locator('#view tbody tr', { hasText: shaft }).locator('.chip.lock', { hasText: 'Ada Byrne' }).waitFor({ timeout: 3000 });
    await screenshot(page, 'documents');

    await page.click('#tabs a[data-view=journal]');
    const entry = page.locator('details.entry').filter({ has: page.locator('.command', { hasText: /^LOCKDESIGNREVISIONS$/ }) });
    await entry.locator('summary').click();
    assert.match(await entry.locator('pre.request').textContent(), /shaft\.par/);
    const answer = JSON.parse(await entry.locator('pre.answer').textContent());
    assert.equal(typeof answer, 'object');
    assert.equal(await entry.locator('.chip.error').count(), 0);
    assert.equal(await page.evaluate(() => window.sameDocument), true);
    assert.deepEqual(page.failures, []);
  }));
