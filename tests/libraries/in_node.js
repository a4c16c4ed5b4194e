// Runs files one after the other among the same globals, as a browser would.
const fs = require("fs");
const vm = require("vm");
const context = vm.createContext({ print: (text) => console.log(text) });
for (const file of process.argv.slice(2))
    vm.runInContext(fs.readFileSync(file, "utf8"), context, { filename: file });
