// Fails when the validator finds an error or a warning in any of the files named on the command line.
import fs from 'node:fs';
import validator from 'gltf-validator';

let faults = 0;
for (const file of process.argv.slice(2)) {
    const report = await validator.validateBytes(new Uint8Array(fs.readFileSync(file)), { maxIssues: 100 });
    const { numErrors, numWarnings, messages } = report.issues;
    faults += numErrors + numWarnings;
    for (const message of messages.filter(({ severity }) => severity < 2)) console.error(file, message);
    console.log(`${file}: ${numErrors} errors, ${numWarnings} warnings, ${report.info.totalTriangleCount} triangles`);
}
process.exit(faults === 0 && process.argv.length > 2 ? 0 : 1);
