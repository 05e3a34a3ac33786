// The emulator's dashboard: five views over its HTTP interface, one page, no reload. Views read
// with GET /api/..., act with POST /api/control (the control subcommands' own requests), and are
// drawn again when the event stream says the state may have changed. Everything shown is built as
// DOM nodes, never as HTML text: document names and journal entries come from clients.
'use strict';

// ---- building blocks ---------------------------------------------------------------------------

const SVG = 'http://www.w3.org/2000/svg';

// An element with properties (class, text, on<event>, any attribute) and children.
function make(namespace, tag, props, children) {
  const node = namespace ? document.createElementNS(namespace, tag) : document.createElement(tag);
  for (const [key, value] of Object.entries(props || {})) {
    if (value === undefined || value === null || value === false) continue;
    if (key === 'text') node.textContent = value;
    else if (key.startsWith('on')) node.addEventListener(key.slice(2), value);
    else node.setAttribute(key, value === true ? '' : value);
  }
  node.append(...children.filter((child) => child !== null && child !== undefined));
  return node;
}
const h = (tag, props, ...children) => make(null, tag, props, children);
const s = (tag, props, ...children) => make(SVG, tag, props, children);

function debounce(action, ms) {
  let timer = 0;
  const later = (...args) => {
    clearTimeout(timer);
    timer = setTimeout(() => action(...args), ms);
  };
  later.cancel = () => clearTimeout(timer);
  return later;
}

// "2026-11-24T01:02:03.456Z" as "2026-11-24 01:02:03"; the emulator keeps UTC throughout.
function when(iso) {
  return iso ? iso.replace('T', ' ').replace(/(\.\d+)?Z$/, '') : '';
}

const count = (n, noun) => `${n} ${noun}${n === 1 ? '' : 's'}`;
const pretty = (value) => (typeof value === 'string' ? value : JSON.stringify(value, null, 2));
const fileName = (path) => path.split(/[\\/]/).pop();

// A path whose folder gives way, shortened at its end, before its file name does.
function pathCell(d) {
  const name = fileName(d.Path);
  return h('span', { class: 'path', title: d.Path },
    h('span', { class: 'folder', text: d.Path.slice(0, d.Path.length - name.length) }),
    h('span', { class: 'file', text: name }));
}

// ---- talking to the emulator -------------------------------------------------------------------

class HttpError extends Error {
  constructor(status, text) {
    super(`${status}: ${text}`);
    this.status = status;
  }
}

// The body as JSON, or as the text it is when it is none (shown as it came).
async function bodyOf(response) {
  const text = await response.text();
  try {
    return JSON.parse(text);
  } catch {
    return text;
  }
}

async function answerOf(response) {
  const body = await bodyOf(response);
  if (!response.ok) throw new HttpError(response.status, body && body.Error ? body.Error : body);
  return body;
}

async function get(path, params = {}) {
  const query = new URLSearchParams();
  for (const [key, value] of Object.entries(params)) {
    if (value !== '' && value !== undefined && value !== null && value !== false) {
      query.set(key, value === true ? '1' : value);
    }
  }
  const url = query.toString() ? `${path}?${query}` : path;
  return answerOf(await fetch(url, { headers: { Accept: 'application/json' } }));
}

// One control action; the answer as the server gave it, with its HTTP status.
async function control(request) {
  const response = await fetch('/api/control', {
    method: 'POST',
    headers: { 'Content-Type': 'application/json' },
    body: JSON.stringify(request),
  });
  return { status: response.status, answer: await bodyOf(response) };
}

// Runs the newest of overlapping loads only: a slow answer to an old search never overwrites the
// answer to the new one.
function latestOnly(load) {
  let generation = 0;
  return async (...args) => {
    const mine = ++generation;
    const result = await load(...args);
    return mine === generation ? result : undefined;
  };
}

const problem = document.getElementById('problem');
function report(error) {
  problem.hidden = false;
  problem.textContent = `The emulator did not answer as expected: ${error.message}`;
}
function cleared() {
  problem.hidden = true;
}

// ---- shared pieces of views --------------------------------------------------------------------

// A table from a list of columns ({title, cell: row => node or text, className}) and rows.
function table(columns, rows, rowProps = () => ({})) {
  return h(
    'table',
    { class: 'grid' },
    h('thead', {}, h('tr', {}, ...columns.map((c) => h('th', { class: c.className, text: c.title })))),
    h(
      'tbody',
      {},
      ...rows.map((row) =>
        h(
          'tr',
          rowProps(row),
          ...columns.map((c) => {
            const value = c.cell(row);
            return value instanceof Node
              ? h('td', { class: c.className }, value)
              : h('td', { class: c.className, text: value, title: c.tip ? String(value) : null });
          }),
        ),
      ),
    ),
  );
}

const empty = (text) => h('p', { class: 'empty', text });
const chip = (text, kind = '') => h('span', { class: `chip ${kind}`, text });

const lockCell = (d) => (d.LockedBy ? chip(d.LockedBy, 'lock') : h('span', { class: 'muted', text: 'free' }));
const expiry = (d) => (d.LockedBy ? d.LockExpires ? when(d.LockExpires) : 'never' : '');

function permissionsCell(d) {
  const entries = Object.entries(d.Permissions || {});
  const level = ([user, permission]) => chip(`${user}: ${permission}`, `perm-${String(permission).toLowerCase()}`);
  return h('span', { class: 'chips' }, ...entries.map(level));
}

// The first documents that match what was typed, offered by a datalist.
async function suggestDocuments(text, datalist) {
  const page = await get('/api/documents', { q: text, limit: 20 });
  datalist.replaceChildren(...page.Items.map((d) => h('option', { value: d.Path, label: d.Name })));
  return page.Items;
}

const structureLink = (d, direction, text) =>
  h('a', { href: `#structure?document=${encodeURIComponent(d.DocumentId)}&direction=${direction}`, text });

// Commands and users met so far (journal entries, permissions), offered as the inputs are typed in.
function knownValues(id) {
  const list = document.getElementById(id);
  const values = new Set();
  return {
    get size() {
      return values.size;
    },
    learn(value) {
      if (value && !values.has(value)) {
        values.add(value);
        list.append(h('option', { value }));
      }
    },
  };
}
const known = { commands: knownValues('known-commands'), users: knownValues('known-users') };
// From commands only: a control's Command is its action, and its User may be one it refused.
function learnFrom(entry) {
  if (entry.Operation !== 'execute') return;
  known.commands.learn(entry.Command);
  known.users.learn(entry.User);
}

// ---- Documents ---------------------------------------------------------------------------------

const PageSize = 100;

const documentsView = {
  title: 'Documents',
  query: { q: '', offset: 0, focus: '' },
  build() {
    this.searchLater = debounce(() => this.go({ q: this.search.value, offset: 0, focus: '' }), 200);
    this.search = h('input', {
      type: 'search',
      placeholder: 'Search by name or path',
      'aria-label': 'Search documents',
      oninput: this.searchLater,
    });
    this.pager = h('span', { class: 'pager' });
    this.body = h('div', { class: 'scroll' });
    this.load = latestOnly((query) => get('/api/documents', { q: query.q, offset: query.offset, limit: PageSize }));
    return h('section', {}, h('div', { class: 'toolbar' }, this.search, this.pager), this.body);
  },
  show(params) {
    // A search still being typed gives way to the document this view was opened on.
    this.searchLater.cancel();
    this.query = {
      q: params.get('q') || '',
      offset: Number(params.get('offset')) || 0,
      focus: params.get('focus') || '',
    };
    this.search.value = this.query.q;
    return this.refresh();
  },
  go(query) {
    this.query = query;
    this.refresh();
  },
  async refresh() {
    const page = await this.load(this.query);
    if (!page) return;
    const columns = [
      { title: 'Path', cell: pathCell },
      { title: 'Name', cell: (d) => d.Name },
      { title: 'Document id', cell: (d) => d.DocumentId, className: 'mono' },
      { title: 'Rev', cell: (d) => d.Revision, className: 'narrow' },
      { title: 'Version', cell: (d) => versionCell(d), className: 'narrow' },
      { title: 'Locked by', cell: lockCell },
      { title: 'Since', cell: (d) => when(d.LockedAt), className: 'time' },
      { title: 'Expires', cell: expiry, className: 'time' },
      { title: 'Permissions', cell: permissionsCell },
      {
        title: 'Structure',
        cell: (d) => h('span', { class: 'links' }, structureLink(d, 'children', 'tree'), structureLink(d, 'parents', 'where used')),
      },
    ];
    const rowProps = (d) => ({ class: d.DocumentId === this.query.focus ? 'focus' : null, 'data-id': d.DocumentId });
    this.body.replaceChildren(page.Items.length ? table(columns, page.Items, rowProps) : empty('No document matches.'));
    this.drawPager(page);
    this.body.querySelector('tr.focus')?.scrollIntoView({ block: 'center' });
  },
  drawPager(page) {
    const last = Math.min(page.Offset + page.Items.length, page.Total);
    const step = (text, offset, disabled) =>
      h('button', { type: 'button', disabled, text, onclick: () => this.go({ ...this.query, offset, focus: '' }) });
    this.pager.replaceChildren(
      step('‹ Previous', Math.max(0, page.Offset - PageSize), page.Offset === 0),
      h('span', { text: page.Total ? `${page.Offset + 1}–${last} of ${page.Total}` : '0 documents' }),
      step('Next ›', page.Offset + PageSize, last >= page.Total),
    );
  },
};

function versionCell(d) {
  if (d.CloudVersion && d.CloudVersion !== d.Version) {
    const newer = chip(`cloud ${d.CloudVersion}`, 'newer');
    return h('span', { title: 'A newer version is in the cloud' }, `${d.Version} `, newer);
  }
  return String(d.Version);
}

// ---- Locks and sessions ------------------------------------------------------------------------

const locksView = {
  title: 'Locks & sessions',
  build() {
    this.load = latestOnly(() => Promise.all([get('/api/locks'), get('/api/sessions')]));
    this.locks = h('div', { class: 'scroll' });
    this.sessions = h('div', { class: 'scroll' });
    return h('section', { class: 'split' },
      h('div', {}, h('h2', { text: 'Locks' }), this.locks),
      h('div', {}, h('h2', { text: 'Registered clients' }), this.sessions));
  },
  show() {
    return this.refresh();
  },
  async refresh() {
    const answers = await this.load();
    if (!answers) return;
    const [locks, sessions] = answers;
    const release = (lock) => async () => {
      showAnswer(await acting({ Action: 'unlock', User: lock.LockedBy, Path: lock.Path }));
    };
    this.locks.replaceChildren(locks.Items.length ? table([
      { title: 'Path', cell: (l) => h('a', { href: documentHref(l) }, pathCell(l)) },
      { title: 'Document id', cell: (l) => l.DocumentId, className: 'mono' },
      { title: 'Locked by', cell: lockCell },
      { title: 'Since', cell: (l) => when(l.LockedAt), className: 'time' },
      { title: 'Expires', cell: expiry, className: 'time' },
      {
        title: '',
        cell: (l) => h('button', { type: 'button', class: 'small', onclick: release(l), text: `Unlock as ${l.LockedBy}` }),
      },
    ], locks.Items) : empty('No document is locked.'));
    this.sessions.replaceChildren(sessions.Items.length ? table([
      { title: 'Process id', cell: (c) => String(c.Pid), className: 'narrow' },
      { title: 'Product', cell: (c) => c.Product },
      { title: 'Version', cell: (c) => c.Version },
      { title: 'User', cell: (c) => c.User },
      { title: 'Since', cell: (c) => when(c.Since), className: 'time' },
      { title: 'Session', cell: (c) => c.Session, className: 'mono', tip: true },
    ], sessions.Items) : empty('No client is registered.'));
  },
};

const documentHref = (d) => `#documents?q=${encodeURIComponent(d.Path)}&focus=${encodeURIComponent(d.DocumentId)}`;

// ---- Structure ---------------------------------------------------------------------------------

const Box = { width: 230, height: 44, across: 290, down: 58, margin: 16 };

const structureView = {
  title: 'Structure',
  params: { document: '', direction: 'children' },
  build() {
    this.picker = h('input', {
      type: 'search',
      list: 'structure-choices',
      placeholder: 'Document: type a name or path',
      class: 'wide',
      'aria-label': 'Document',
      oninput: debounce(() => this.suggest(), 150),
      onchange: () => this.choose(),
    });
    this.choices = h('datalist', { id: 'structure-choices' });
    this.directions = h('span', { class: 'segmented' },
      ...[['children', 'Tree'], ['parents', 'Where used']].map(([direction, text]) =>
        h('button', { type: 'button', 'data-direction': direction, text, onclick: () => this.navigate({ direction }) }),
      ),
    );
    this.caption = h('p', { class: 'caption' });
    this.drawing = h('div', { class: 'drawing' });
    this.suggestions = new Map();
    this.load = latestOnly((params) => get('/api/structure', params));
    const toolbar = h('div', { class: 'toolbar' }, this.picker, this.choices, this.directions);
    return h('section', {}, toolbar, this.caption, this.drawing);
  },
  navigate(change) {
    const next = { ...this.params, ...change };
    location.hash = `#structure?document=${encodeURIComponent(next.document)}&direction=${next.direction}`;
  },
  async suggest() {
    const documents = await suggestDocuments(this.picker.value, this.choices);
    this.suggestions = new Map(documents.map((d) => [d.Path, d]));
  },
  choose() {
    const chosen = this.suggestions.get(this.picker.value);
    if (chosen) this.navigate({ document: chosen.DocumentId });
  },
  show(params) {
    this.params = {
      document: params.get('document') || '',
      direction: params.get('direction') === 'parents' ? 'parents' : 'children',
    };
    for (const button of this.directions.children) {
      button.classList.toggle('on', button.dataset.direction === this.params.direction);
    }
    return this.refresh();
  },
  async refresh() {
    if (!this.params.document) {
      this.caption.textContent = 'Choose a document above, or "tree" or "where used" in the documents list.';
      this.drawing.replaceChildren();
      return;
    }
    const answer = await this.load(this.params);
    if (!answer) return;
    const root = answer.Root;
    const parents = this.params.direction === 'parents';
    this.picker.value = root.Path;
    this.caption.textContent = parents
      ? `Where ${root.Name} is used: each document points to the assemblies that contain it ` +
        'and, dashed, to its drawings.'
      : `What ${root.Name} contains: each assembly points to its children.`;
    this.drawing.replaceChildren(drawTree(root));
  },
};

// Lays the tree out left to right: each leaf on a row of its own, a parent level with the middle
// of its children. One pass over the nodes.
function layOut(root) {
  const placed = [];
  let rows = 0;
  let deepest = 0;
  const place = (node, depth) => {
    deepest = Math.max(deepest, depth);
    const children = node.Children || [];
    const kids = children.map((child) => place(child, depth + 1));
    const row = kids.length ? (kids[0].row + kids[kids.length - 1].row) / 2 : rows++;
    const spot = { node, depth, row, kids };
    placed.push(spot);
    return spot;
  };
  place(root, 0);
  return { placed, rows, deepest };
}

function drawTree(root) {
  const { placed, rows, deepest } = layOut(root);
  const x = (spot) => Box.margin + spot.depth * Box.across;
  const y = (spot) => Box.margin + spot.row * Box.down;
  const edges = [];
  const nodes = [];
  for (const spot of placed) {
    for (const kid of spot.kids) {
      const [x1, y1, x2, y2] = [x(spot) + Box.width, y(spot) + Box.height / 2, x(kid), y(kid) + Box.height / 2];
      const bend = (x2 - x1) / 2;
      edges.push(s('path', {
        class: kid.node.Relation === 'DrawingOf' ? 'edge drawing-of' : 'edge',
        'marker-end': 'url(#arrow)',
        d: `M${x1},${y1} C${x1 + bend},${y1} ${x2 - bend},${y2} ${x2 - 2},${y2}`,
      }));
    }
    nodes.push(drawNode(spot.node, x(spot), y(spot), spot.depth === 0));
  }
  const width = 2 * Box.margin + deepest * Box.across + Box.width;
  const height = 2 * Box.margin + Math.max(rows, 1) * Box.down - (Box.down - Box.height);
  const arrow = s('marker', { id: 'arrow', viewBox: '0 0 8 8', refX: 7, refY: 4, markerWidth: 7, markerHeight: 7, orient: 'auto' },
    s('path', { d: 'M0,0 L8,4 L0,8 z', class: 'arrow' }));
  const frame = { class: 'tree', width, height, viewBox: `0 0 ${width} ${height}`, role: 'img', 'aria-label': `Structure of ${root.Name}` };
  return s('svg', frame, s('defs', {}, arrow),
    s('g', {}, ...edges), s('g', {}, ...nodes));
}

function drawNode(node, x, y, isRoot) {
  const mark = node.Cycle ? 'cycle' : node.Repeated ? 'repeated' : '';
  const kind = ['node', isRoot ? 'root' : '', mark].filter(Boolean).join(' ');
  const title = { cycle: `${node.Path} (its own ancestor: drawn once)`, repeated: `${node.Path} (again: drawn once above)` }[mark];
  return s('a', { href: documentHref(node), class: kind, 'data-id': node.DocumentId },
    s('title', { text: title || node.Path }),
    s('rect', { x, y, width: Box.width, height: Box.height, rx: 5 }),
    s('text', { x: x + 10, y: y + 18, class: 'name', text: clip(node.Name, 28) }),
    s('text', { x: x + 10, y: y + 35, class: 'file', text: clip(fileName(node.Path), 34) }),
    mark ? s('text', { x: x + Box.width - 8, y: y + 18, class: 'mark', 'text-anchor': 'end', text: MarkText[mark] }) : null);
}

const MarkText = { cycle: '↻ cycle', repeated: 'repeated' };
const clip = (text, most) => (text.length > most ? `${text.slice(0, most - 1)}…` : text);

// ---- Journal -----------------------------------------------------------------------------------

const JournalPage = 200;
const JournalShown = 2000; // live entries beyond this drop off the bottom of the list

const journalView = {
  title: 'Journal',
  followsChanges: false, // its entries come by the event stream
  build() {
    const filter = (list, text) => h('input', { type: 'search', list, placeholder: text, 'aria-label': text });
    this.commandFilter = filter('known-commands', 'Command');
    this.userFilter = filter('known-users', 'User');
    this.errorsOnly = h('input', { type: 'checkbox', id: 'errors-only' });
    const again = debounce(() => this.refresh(), 200);
    for (const input of [this.commandFilter, this.userFilter, this.errorsOnly]) input.addEventListener('input', again);
    this.list = h('div', { class: 'journal' });
    this.more = h('button', { type: 'button', text: 'Older entries', onclick: () => this.older() });
    this.load = latestOnly((params) => get('/api/journal', params));
    this.newest = Infinity; // until the first page is drawn, the stream's entries wait in recentEntries
    return h('section', {},
      h('div', { class: 'toolbar' }, this.commandFilter, this.userFilter,
        h('label', { class: 'check' }, this.errorsOnly, ' errors only'),
        h('a', { class: 'button', href: '/api/journal/export', download: 'journal.jsonl', text: 'Export JSON Lines' })),
      this.list, h('div', { class: 'toolbar' }, this.more));
  },
  filters() {
    return {
      command: this.commandFilter.value.trim(),
      user: this.userFilter.value.trim(),
      errors: this.errorsOnly.checked,
    };
  },
  matches(entry) {
    const f = this.filters();
    return (
      (!f.command || entry.Command === f.command) &&
      (!f.user || entry.User === f.user) &&
      (!f.errors || (entry.Errors || []).length > 0)
    );
  },
  show() {
    newEntries.reset();
    return this.refresh();
  },
  async refresh() {
    const page = await this.load({ ...this.filters(), limit: JournalPage });
    if (!page) return;
    this.list.replaceChildren(...page.Items.map((entry) => this.entry(entry)));
    this.newest = page.Items.length ? page.Items[0].Seq : 0;
    this.oldest = page.Items.length ? page.Items[page.Items.length - 1].Seq : 0;
    this.more.hidden = page.Items.length < JournalPage;
    if (!page.Items.length) this.list.append(empty('No entry matches.'));
    // Entries that came by the stream while the page was on its way.
    this.arrived(recentEntries);
  },
  async older() {
    const page = await get('/api/journal', { ...this.filters(), before: this.oldest, limit: JournalPage });
    this.list.append(...page.Items.map((entry) => this.entry(entry)));
    if (page.Items.length) this.oldest = page.Items[page.Items.length - 1].Seq;
    this.more.hidden = page.Items.length < JournalPage;
  },
  // Entries that arrived by the event stream, oldest first; those already shown are passed over.
  arrived(entries) {
    const shown = entries.filter((entry) => entry.Seq > this.newest && this.matches(entry));
    if (!shown.length) return;
    this.newest = shown[shown.length - 1].Seq;
    this.list.querySelector(':scope > .empty')?.remove();
    this.list.prepend(...shown.reverse().map((entry) => this.entry(entry)));
    while (this.list.childElementCount > JournalShown) this.list.lastElementChild.remove();
  },
  entry(e) {
    learnFrom(e);
    const errors = e.Errors || [];
    // A control the emulator turned down has no protocol error, but it did not happen.
    const refused = e.Operation === 'control' && e.Answer && e.Answer.Ok === false;
    return h('details', { class: errors.length ? 'entry failed' : 'entry', 'data-seq': e.Seq },
      h('summary', {},
        h('span', { class: 'seq', text: `#${e.Seq}` }),
        h('span', { class: 'time', text: when(e.Time), title: e.Time }),
        h('span', { class: 'op', text: e.Operation }),
        h('span', { class: 'command', text: e.Command || '' }),
        h('span', { class: 'user', text: e.User || '' }),
        h('span', { class: 'ms', text: `${Number(e.DurationMs).toFixed(2)} ms` }),
        h('span', { class: 'outcome' },
          ...errors.map((error) => chip(`${error.Code} ${error.Name}`, 'error')),
          refused ? chip('refused', 'error') : null,
          e.Fault ? chip(faultText(e.Fault), 'fault') : null,
          errors.length || refused || e.Fault ? null : chip('ok', 'ok'))),
      h('div', { class: 'detail' },
        h('dl', {},
          h('dt', { text: 'Session' }), h('dd', { class: 'mono', text: e.Session || '—' }),
          h('dt', { text: 'Desktop' }), h('dd', { text: e.Desktop || '—' }),
          h('dt', { text: 'Time' }), h('dd', { text: e.Time })),
        h('div', { class: 'bodies' },
          h('div', {}, h('h3', { text: 'Request' }), h('pre', { class: 'request', text: pretty(e.Request) })),
          h('div', {}, h('h3', { text: 'Answer' }), h('pre', { class: 'answer', text: pretty(e.Answer) })))));
  },
};

function faultText(fault) {
  const parts = [];
  if (fault.LatencyMs) parts.push(`+${fault.LatencyMs} ms`);
  if (fault.FailCode) parts.push(`fails ${fault.FailCode}`);
  return `fault: ${parts.join(', ')}`;
}

// ---- Controls ----------------------------------------------------------------------------------

const controlsView = {
  title: 'Controls',
  build() {
    this.user = h('input', { list: 'known-users', value: 'Ben Okafor', 'aria-label': 'User', placeholder: 'User' });
    this.path = h('input', {
      type: 'search',
      list: 'control-paths',
      'aria-label': 'Path',
      placeholder: 'Document path',
      class: 'wide',
      oninput: debounce(() => this.suggest(), 150),
    });
    this.paths = h('datalist', { id: 'control-paths' });
    const button = (Action, text, request = () => ({ Action })) =>
      h('button', { type: 'button', 'data-action': Action, text, onclick: () => this.send(request()) });
    const asOther = ([Action, text]) =>
      button(Action, text, () => ({ Action, User: this.user.value.trim(), Path: this.path.value.trim() }));
    const field = (text, input) => h('label', { class: 'field' }, h('span', { text }), input);

    this.faultCommand = h('input', { list: 'known-commands', placeholder: 'LOCKDESIGNREVISIONS' });
    const number = ([key, text]) => ({ key, text, input: h('input', { type: 'number', min: 0, step: 1, class: 'number' }) });
    this.faultNumbers = [['LatencyMs', 'Latency ms'], ['FailCode', 'Fail code'], ['Times', 'Times']].map(number);
    this.faults = h('div', {});
    this.connection = h('p', { class: 'caption' });
    this.reset = h('button', { type: 'button', class: 'danger', text: 'Reset…', onclick: () => this.confirmReset() });
    this.answer = h('div', { class: 'answer-panel' }, empty('The answer to the last control shows here.'));

    return h('section', { class: 'cards' },
      card('Act as another user', 'Lock, unlock or save a new version in the cloud, as someone else would.',
        h('div', { class: 'row' }, this.user, this.path, this.paths),
        h('div', { class: 'row' }, ...[['lock', 'Lock'], ['unlock', 'Unlock'], ['save', 'Save new version']].map(asOther))),
      card('Connection', "This desktop's user: offline, cloud commands answer code 6; signed out, every command answers code 3.",
        this.connection,
        h('div', { class: 'row' },
          ...[['offline', 'Go offline'], ['online', 'Go online'], ['signout', 'Sign out'], ['signin', 'Sign in']]
            .map(([action, text]) => button(action, text)))),
      card('Faults', 'A fault delays a command, answers it with an error code, or both; Times 0 lasts until cleared.',
        h('div', { class: 'row' },
          field('Command', this.faultCommand),
          ...this.faultNumbers.map((f) => field(f.text, f.input)),
          button('fault', 'Add fault', () => this.faultRequest())),
        this.faults,
        h('div', { class: 'row' }, button('clear-faults', 'Clear faults'))),
      card('Reset', 'Empties the database and imports the workspace again.', h('div', { class: 'row' }, this.reset)),
      h('div', { class: 'card answer-card' }, h('h2', { text: 'Answer' }), this.answer));
  },
  faultRequest() {
    const request = { Action: 'fault', Command: this.faultCommand.value.trim() };
    for (const { key, input } of this.faultNumbers) {
      if (input.value !== '') request[key] = Number(input.value);
    }
    return request;
  },
  async suggest() {
    this.learnUsers(await suggestDocuments(this.path.value, this.paths));
  },
  learnUsers(documents) {
    for (const d of documents) Object.keys(d.Permissions || {}).forEach((user) => known.users.learn(user));
  },
  confirmReset() {
    if (this.reset.classList.contains('armed')) {
      this.disarm();
      this.send({ Action: 'reset' });
      return;
    }
    this.reset.classList.add('armed');
    this.reset.textContent = 'Click again to reset';
    this.disarmTimer = setTimeout(() => this.disarm(), 5000);
  },
  disarm() {
    clearTimeout(this.disarmTimer);
    this.reset.classList.remove('armed');
    this.reset.textContent = 'Reset…';
  },
  async send(request) {
    showAnswer(await acting(request));
    app.refreshSoon();
  },
  async show() {
    await app.readStatus();
    return this.refresh();
  },
  async refresh() {
    const status = app.status;
    const online = status.Online ? 'online' : 'offline';
    this.connection.textContent = `${status.User}: ${online}, ${status.SignedIn ? 'signed in' : 'signed out'}.`;
    const faults = status.Faults || [];
    this.faults.replaceChildren(faults.length ? table([
      { title: 'Command', cell: (f) => f.Command, className: 'mono' },
      { title: 'Latency', cell: (f) => (f.LatencyMs ? `${f.LatencyMs} ms` : '—') },
      { title: 'Fails with', cell: (f) => (f.FailCode ? String(f.FailCode) : '—') },
      { title: 'Times left', cell: (f) => (f.Times ? String(f.Times) : 'until cleared') },
    ], faults) : empty('No fault is active.'));
    if (!known.users.size) this.learnUsers((await get('/api/documents', { limit: 50 })).Items);
  },
};

function card(title, text, ...content) {
  return h('div', { class: 'card' }, h('h2', { text: title }), h('p', { class: 'caption', text }), ...content);
}

// Sends one control and keeps what went and what came back, for the answer panel.
async function acting(request) {
  try {
    return { request, ...(await control(request)) };
  } catch (error) {
    return { request, status: 0, answer: `not sent: ${error.message}` };
  }
}

function showAnswer({ request, status, answer }) {
  const ok = status === 200 && answer && answer.Ok === true;
  const verdict = ok ? `Done (HTTP ${status})` : `Refused (HTTP ${status})${answer && answer.Error ? `: ${answer.Error}` : ''}`;
  const panel = controlsView.answer;
  if (!panel) return;
  panel.replaceChildren(
    h('p', { class: ok ? 'verdict ok' : 'verdict failed', text: verdict }),
    h('h3', { text: 'Request' }), h('pre', { text: pretty(request) }),
    h('h3', { text: 'Answer' }), h('pre', { class: 'answer', text: pretty(answer) }));
  if (app.view !== controlsView) {
    problem.hidden = ok;
    problem.textContent = ok ? '' : `${request.Action}: ${verdict}`;
  }
}

// ---- the live connection -----------------------------------------------------------------------

// The latest entries from the stream, oldest first: a journal page fetched meanwhile may lack them.
const recentEntries = [];
const RecentKept = 500;

// How many journal entries arrived while the journal was not on screen.
const newEntries = {
  count: 0,
  badge: document.getElementById('journal-new'),
  add(n) {
    this.count += n;
    this.badge.hidden = false;
    this.badge.textContent = String(this.count);
  },
  reset() {
    this.count = 0;
    this.badge.hidden = true;
  },
};

// The event stream from the newest entry on. EventSource reconnects by itself and sends the last
// id it saw, so a restart of the emulator loses and repeats nothing.
function listen(after) {
  const live = document.getElementById('live');
  const events = new EventSource(`/api/events?after=${after}`);
  const setLive = (state, text) => {
    live.className = `live ${state}`;
    live.textContent = text;
  };
  let batch = [];
  const flush = () => {
    const entries = batch;
    batch = [];
    entries.forEach(learnFrom);
    recentEntries.push(...entries);
    recentEntries.splice(0, Math.max(0, recentEntries.length - RecentKept));
    if (app.view === journalView) journalView.arrived(entries);
    else newEntries.add(entries.length);
  };
  events.addEventListener('open', () => setLive('up', 'live'));
  events.addEventListener('error', () =>
    setLive('down', events.readyState === EventSource.CLOSED ? 'disconnected: reload the page' : 'reconnecting…'));
  events.addEventListener('journal', (event) => {
    if (!batch.length) requestAnimationFrame(flush);
    batch.push(JSON.parse(event.data));
  });
  events.addEventListener('changed', () => app.refreshSoon());
}

// ---- the page ----------------------------------------------------------------------------------

const views = {
  documents: documentsView,
  locks: locksView,
  structure: structureView,
  journal: journalView,
  controls: controlsView,
};

const app = {
  view: null,
  status: null,
  main: document.getElementById('view'),
  built: new Map(),
  async start() {
    window.addEventListener('hashchange', () => this.route());
    await this.readStatus().catch(report);
    this.route();
    const latest = await get('/api/journal', { limit: JournalPage }).catch(() => ({ Items: [] }));
    latest.Items.forEach(learnFrom);
    listen(latest.Items.length ? latest.Items[0].Seq : 0);
  },
  route() {
    const [name, query] = location.hash.slice(1).split('?');
    const view = views[name] || documentsView;
    if (!this.built.has(view)) this.built.set(view, view.build());
    this.view = view;
    this.main.replaceChildren(this.built.get(view));
    document.title = `${view.title} · Corvane emulator`;
    for (const tab of document.querySelectorAll('#tabs a')) {
      tab.classList.toggle('on', views[tab.dataset.view] === view);
    }
    this.run(() => view.show(new URLSearchParams(query || '')));
  },
  async run(step) {
    try {
      await step();
      cleared();
    } catch (error) {
      report(error);
    }
  },
  async readStatus() {
    this.status = await get('/api/status');
    const st = this.status;
    const cloud = st.Cloud ? ` · shared cloud ${st.Cloud}` : '';
    document.getElementById('desktop').textContent = `${st.Desktop || st.User}${cloud}`;
    const faults = (st.Faults || []).length;
    const state = [
      chip(st.Online ? 'online' : 'offline', st.Online ? 'ok' : 'error'),
      chip(st.SignedIn ? 'signed in' : 'signed out', st.SignedIn ? 'ok' : 'error'),
      h('span', { text: `${count(st.Documents, 'document')} · ${count(st.Locks, 'lock')} · ${count(st.Sessions, 'session')}` }),
    ];
    if (faults) state.push(chip(count(faults, 'fault'), 'fault'));
    document.getElementById('state').replaceChildren(...state);
    return st;
  },
  // After a change: the status line and the view on screen, once for a burst of changes.
  refreshSoon: debounce(() => app.run(async () => {
    await app.readStatus();
    if (app.view.followsChanges !== false) await app.view.refresh();
  }), 100),
};

app.start();
