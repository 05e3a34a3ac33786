// The structure view draws what the workspace's relations say, both ways, marks a repeated child
// and a cycle, and leads from a node to its document.
import assert from 'node:assert/strict';
import { test } from 'node:test';
import { openDashboard, screenshot, withDashboard, workspaceImport } from './support.mjs';

const nameOf = new Map(workspaceImport.documents.map((d) => [d.file, d.name]));

// Every document reachable from `file` along the relations, one way or the other.
function reachable(file, from, to, kinds) {
  const found = new Set();
  const walk = (at) => {
    for (const relation of workspaceImport.relations) {
      if (relation[from] === at && kinds.includes(relation.type) && !found.has(relation[to])) {
        found.add(relation[to]);
        walk(relation[to]);
      }
    }
  };
  walk(file);
  return [...found].map((f) => nameOf.get(f)).sort();
}

const drawn = async (page, caption) => {
  await page.locator('.caption', { hasText: caption }).waitFor();
  return page.locator('svg.tree a.node:not(.root) .name').allTextContents();
};

// Opens the structure of a document from its row in the documents view.
async function fromDocuments(page, file, link) {
  await page.click('#tabs a[data-view=documents]');
  await page.fill('#view input[type=search]', file);
  await page.locator('#view tbody tr', { hasText: file }).getByText(link, { exact: true }).click();
}

test('the structure view draws an assembly, where a part is used, and marks repeats and cycles', () =>
  withDashboard(async (emulator, browser) => {
    const page = await openDashboard(browser, emulator);
    await fromDocuments(page, 'gearbox.asm', 'tree');
    const children = reachable('Gearbox/gearbox.asm', 'parent', 'child', ['DesignChildRelation']);
    assert.deepEqual((await drawn(page, 'What Gearbox contains')).sort(), children);
    await screenshot(page, 'structure');

    await fromDocuments(page, 'housing.psm', 'where used');
    const parents = reachable('Gearbox/housing.psm', 'child', 'parent', ['DesignChildRelation', 'DrawingOf']);
    assert.deepEqual((await drawn(page, 'Where Housing is used')).sort(), parents);
    await screenshot(page, 'where-used');

    // The housing again under the shaft assembly, and the gearbox inside its own shaft.
    for (const [parent, child] of [['Gearbox/Shaft/shaft-assembly.asm', 'Gearbox/housing.psm'], ['Gearbox/Shaft/shaft.par', 'Gearbox/gearbox.asm']]) {
      const run = await emulator.host('children', 'add', emulator.document(parent), emulator.document(child));
      assert.equal(run.status, 0, run.err);
    }
    await fromDocuments(page, 'gearbox.asm', 'tree');
    await page.locator('svg.tree a.node.cycle').waitFor();
    assert.deepEqual(await page.locator('svg.tree a.node.cycle .name').allTextContents(), ['Gearbox']);
    assert.deepEqual(await page.locator('svg.tree a.node.repeated .name').allTextContents(), ['Housing']);
    await screenshot(page, 'structure-marked');

    await page.locator('svg.tree a.node:not(.root)', { hasText: 'Bearing' }).click();
    const focused = page.locator('#view tr.focus');
    await focused.waitFor();
    assert.match(await focused.textContent(), /bearing\.par/);
    assert.deepEqual(page.failures, []);
  }));
