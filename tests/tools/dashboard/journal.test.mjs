// Entries arrive on the open journal, its export holds what was sent and nothing secret; a page
// without the token gets nothing.
import assert from 'node:assert/strict';
import fs from 'node:fs';
import { test } from 'node:test';
import { openDashboard, withDashboard } from './support.mjs';

test('the journal shows commands as they come and exports them as JSON Lines, without the token or the secret', () =>
  withDashboard(async (emulator, browser) => {
    const stranger = await browser.newPage();
    assert.equal((await stranger.goto(`${emulator.origin}/`)).status(), 401);

    const page = await openDashboard(browser, emulator);
    await page.click('#tabs a[data-view=journal]');
    for (const args of [['checkout', emulator.document('Gearbox/cover.par')], ['roots']]) {
      await emulator.host(...args);
    }
    // They arrive on the open journal by the event stream.
    await page.locator('details.entry .command', { hasText: /^GETCORVANEROOTFOLDERS$/ }).first().waitFor();
    const [download] = await Promise.all([page.waitForEvent('download'), page.click('text=Export JSON Lines')]);
    const text = fs.readFileSync(await download.path(), 'utf8');
    const entries = text.trimEnd().split('\n').map((line) => JSON.parse(line));
    const commands = new Set(entries.map((entry) => entry.Command));
    for (const command of ['LOCKDESIGNREVISIONS', 'GETCORVANEROOTFOLDERS']) assert.ok(commands.has(command), command);
    const seqs = entries.map((entry) => entry.Seq);
    assert.deepEqual(seqs, [...seqs].sort((a, b) => a - b));
    for (const secret of [emulator.endpoint.DashboardToken, emulator.endpoint.Secret]) {
      assert.ok(secret && !text.includes(secret));
    }
  }));
