'use strict';
// Tagwright's CSS checker, run by validator.sh beside it: validator.js [options...] FILE
//
// Reports, sorted by position, each place css-tree cannot parse and each declaration whose
// property it does not know or whose value does not match the property's syntax. FILE is read
// in the encoding named by TAGWRIGHT_TEXT_ENCODING; without it, UTF-8 when the bytes are valid
// UTF-8, else Shift_JIS. Exit status: 0 clean, 1 errors reported, 2 no readable file,
// 127 css-tree missing.

const fs = require('fs');
const path = require('path');

const name = 'validator.sh';
const installHint = 'sudo apt install nodejs node-css-tree';
const encodingVariable = 'TAGWRIGHT_TEXT_ENCODING';
const fallbackEncoding = 'Shift_JIS';
const utf8 = 'UTF-8';
// css-tree's own first line for a value that does not fit the property's syntax.
const mismatchMessage = 'Mismatch';

let csstree;
try {
    csstree = require('css-tree');
} catch (error) {
    console.log(`${name}: css-tree is not installed; install it with: ${installHint}`);
    process.exit(127);
}

const args = process.argv.slice(2);
if (args.length === 0) {
    console.log(`usage: ${name} [options...] FILE`);
    process.exit(2);
}
const file = args.pop();
const shown = path.basename(file);
for (const option of args)
    console.log(`${name}: ignoring unknown option ${option}`);

let bytes;
try {
    bytes = fs.readFileSync(file);
} catch (error) {
    console.log(`${name}: cannot read ${file}`);
    process.exit(2);
}

// Strict decoding first; an unreadable byte becomes U+FFFD and the user is told once.
function decode(encoding, fatal) {
    return new TextDecoder(encoding, { fatal }).decode(bytes);
}
function decodeText() {
    let encoding = process.env[encodingVariable];
    if (!encoding) {
        try {
            return decode(utf8, true);
        } catch (error) {
            encoding = fallbackEncoding;
        }
    }
    try {
        new TextDecoder(encoding);
    } catch (error) {
        console.log(`${name}: unknown text encoding ${encoding}; reading ${shown} as ${utf8}.`);
        encoding = utf8;
    }
    try {
        return decode(encoding, true);
    } catch (error) {
        console.log(`${name}: ${shown} is not valid ${encoding} text; the characters that cannot be read are replaced.`);
        return decode(encoding, false);
    }
}
const text = decodeText();

const problems = [];
function report(position, message) {
    problems.push({ line: position.line, column: position.column, message });
}
function sourceOf(node) {
    return text.slice(node.loc.start.offset, node.loc.end.offset).replace(/\s+/g, ' ').trim();
}
function isVar(node) {
    return node.type === 'Function' && node.name.toLowerCase() === 'var';
}

const ast = csstree.parse(text, {
    positions: true,
    onParseError(error) {
        report(error, error.message);
    },
});

csstree.walk(ast, {
    visit: 'Declaration',
    enter(node) {
        // A custom property takes any value, a var() is known only when the page is shown,
        // and a value that did not parse has been reported already.
        if (csstree.property(node.property).custom || node.value.type === 'Raw' || csstree.find(node.value, isVar))
            return;
        // Directly inside an at-rule such as @font-face, a known name is that rule's descriptor.
        const atrule = this.rule ? null : this.atrule && this.atrule.name;
        const descriptor = atrule && !csstree.lexer.checkAtruleDescriptorName(atrule, node.property);
        const { error } = descriptor
            ? csstree.lexer.matchAtruleDescriptor(atrule, node.property, node.value)
            : csstree.lexer.matchDeclaration(node);
        if (!error)
            return;
        const firstLine = error.message.split('\n')[0];
        const message = firstLine === mismatchMessage ? `Invalid value for ${node.property}` : firstLine;
        report(error.line ? error : node.loc.start, `${message} (${node.property}: ${sourceOf(node.value)})`);
    },
});

problems.sort((a, b) => a.line - b.line || a.column - b.column);
for (const problem of problems)
    console.log(`line ${problem.line} column ${problem.column} - Error: ${problem.message}`);
if (problems.length === 0)
    console.log(`No errors found in ${shown}.`);
process.exitCode = problems.length === 0 ? 0 : 1;
