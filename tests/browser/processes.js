// Programs that a test starts. Whatever happens, they end with the test.
'use strict';

const { spawn, execFile } = require('node:child_process');
const net = require('node:net');

const running = new Set();
process.on('exit', () => running.forEach((child) => child.kill('SIGKILL')));

// Starts a program and waits until `isReady(output so far)` gives something, which is the answer's
// `ready`. A program that ends before, or takes longer than 30 seconds, is a failure.
async function start(command, args, env, isReady) {
    const child = spawn(command, args, { env: { ...process.env, ...env } });
    running.add(child);
    let output = '';
    child.ended = new Promise((resolve) => {
        child.on('error', (error) => { output += error.message; resolve(error.message); });
        child.on('exit', (code, signal) => { running.delete(child); resolve(signal ?? code); });
    });
    child.stdout.on('data', (data) => { output += data; });
    child.stderr.on('data', (data) => { output += data; });
    child.output = () => output;

    const deadline = Date.now() + 30000;
    for (;;) {
        const ready = await isReady(output);
        if (ready) return Object.assign(child, { ready });
        if (!running.has(child) || Date.now() > deadline) {
            child.kill('SIGKILL');
            throw new Error(`${command} does not start: ${output}`);
        }
        await new Promise((resolve) => setTimeout(resolve, 20));
    }
}

// Asks a program to end; the answer is its exit code, or the signal that ended it.
async function end(child) {
    const patience = setTimeout(() => child.kill('SIGKILL'), 15000);
    child.kill('SIGTERM');
    const code = await child.ended;
    clearTimeout(patience);
    return code;
}

function outputOf(command, args, env) {
    return new Promise((resolve, reject) => {
        execFile(command, args, { env: { ...process.env, ...env }, maxBuffer: 16 << 20 },
            (error, stdout, stderr) => {
                if (error) reject(new Error(`${command}: ${stderr || error.message}`));
                else resolve(stdout);
            });
    });
}

// A port of the loopback address that nobody uses at the moment.
function freePort() {
    return new Promise((resolve, reject) => {
        const server = net.createServer();
        server.on('error', reject);
        server.listen(0, '127.0.0.1', () => {
            const { port } = server.address();
            server.close(() => resolve(port));
        });
    });
}

function answers(port) {
    return new Promise((resolve) => {
        const socket = net.connect(port, '127.0.0.1');
        socket.on('connect', () => { socket.destroy(); resolve(true); });
        socket.on('error', () => resolve(false));
    });
}

module.exports = { start, end, outputOf, freePort, answers };
