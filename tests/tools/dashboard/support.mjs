// What every dashboard test needs: an emulator of this build on a scratch folder (a copy of the
// example workspace), vanto_host pointed at it, Debian's chromium driven by playwright-core, and a
// place for screenshots. CMake passes the build's programs through the environment.
import { spawn, spawnSync } from 'node:child_process';
import fs from 'node:fs';
import os from 'node:os';
import path from 'node:path';
import { setTimeout as sleep } from 'node:timers/promises';

function required(name) {
  const value = process.env[name];
  if (!value) throw new Error(`${name} is not set: run the dashboard tests through ctest`);
  return value;
}

export const emulatorProgram = required('VANTO_EMULATOR_PROGRAM');
export const hostProgram = required('VANTO_HOST_PROGRAM');
export const examples = required('VANTO_EXAMPLES_DIR');
const shots = required('VANTO_DASHBOARD_SHOTS');
const browserProgram = process.env.VANTO_CHROMIUM || '/usr/bin/chromium';

// The example workspace's own description: the tests compare the page with it.
export const workspaceImport = JSON.parse(
  fs.readFileSync(path.join(examples, 'workspace', 'corvane-import.json'), 'utf8'),
);

export async function launchBrowser() {
  if (!fs.existsSync(browserProgram)) {
    throw new Error(`no browser at ${browserProgram}: scripts/deps installs Debian's chromium`);
  }
  let chromium;
  try {
    ({ chromium } = await import('playwright-core'));
  } catch {
    throw new Error('playwright-core is missing: scripts/deps installs it (npm ci in tests/tools/dashboard)');
  }
  return chromium.launch({ executablePath: browserProgram });
}

export class Emulator {
  constructor() {
    this.scratch = fs.mkdtempSync(path.join(os.tmpdir(), 'vanto-dashboard-'));
    this.data = path.join(this.scratch, 'data');
    this.workspace = path.join(this.scratch, 'workspace');
    fs.cpSync(path.join(examples, 'workspace'), this.workspace, { recursive: true });
  }

  // Starts it and waits for the endpoint file to name the dashboard.
  async start() {
    this.process = spawn(emulatorProgram, ['serve', '--data', this.data, '--workspace', this.workspace], {
      stdio: ['ignore', 'ignore', 'pipe'],
    });
    this.exited = new Promise((done) => this.process.once('exit', done));
    let said = '';
    this.process.stderr.on('data', (chunk) => (said += chunk));
    const file = path.join(this.data, 'endpoint.json');
    for (const started = Date.now(); ; await sleep(25)) {
      const endpoint = fs.existsSync(file) ? JSON.parse(fs.readFileSync(file, 'utf8')) : {};
      if (endpoint.DashboardPort && endpoint.DashboardToken) {
        this.endpoint = endpoint;
        this.origin = `http://127.0.0.1:${endpoint.DashboardPort}`;
        return this;
      }
      if (this.process.exitCode !== null || Date.now() - started > 20000) {
        throw new Error(`the emulator did not start its dashboard: ${said}`);
      }
    }
  }

  // The address a person opens: it carries the token, which the page trades for a cookie.
  get url() {
    return `${this.origin}/?token=${this.endpoint.DashboardToken}`;
  }

  document(relative) {
    return path.join(this.workspace, relative);
  }

  // vanto_host against this emulator, as a person runs it: a promise of its exit status and
  // output, which also tells the process id while it runs.
  host(...args) {
    const child = spawn(hostProgram, ['--data', this.data, ...args], {
      env: { ...process.env, VANTO_CORVANE_EMULATOR: emulatorProgram },
    });
    const run = { out: '', err: '' };
    child.stdout.on('data', (chunk) => (run.out += chunk));
    child.stderr.on('data', (chunk) => (run.err += chunk));
    const ended = new Promise((done) => child.once('close', (status) => done({ status, ...run })));
    return Object.assign(ended, { pid: child.pid });
  }

  async stop() {
    spawnSync(emulatorProgram, ['stop', '--data', this.data], { timeout: 20000 });
    if ((await Promise.race([this.exited.then(() => 'ended'), sleep(10000, 'late', { ref: false })])) !== 'ended') {
      this.process.kill('SIGKILL');
    }
    fs.rmSync(this.scratch, { recursive: true, force: true });
  }
}

// A page on the dashboard, opened as a person opens it: by the printed URL.
export async function openDashboard(browser, emulator) {
  const page = await browser.newPage({ viewport: { width: 1280, height: 800 } });
  const failures = [];
  page.on('pageerror', (error) => failures.push(error.message));
  page.failures = failures;
  await page.goto(emulator.url);
  await page.locator('#live.up').waitFor();
  return page;
}

export async function screenshot(page, name) {
  fs.mkdirSync(shots, { recursive: true });
  await page.screenshot({ path: path.join(shots, `${name}.png`) });
}

// The test's steps with an emulator and a browser, both ended whatever happens.
export async function withDashboard(steps) {
  const browser = await launchBrowser();
  const emulator = new Emulator();
  try {
    await emulator.start();
    await steps(emulator, browser);
  } finally {
    await browser.close();
    await emulator.stop();
  }
}
