// Takes an ESC/POS file apart with an independent decoder and prints its commands and texts. Ends with 1 on a command
// that it does not know or on text that is no code page 949. Its package: npm install --prefix build/npos npos
const fs = require('fs');
const npos = require('npos');

const bytes = fs.readFileSync(process.argv[2]);
const korean = new TextDecoder('euc-kr', {fatal: true});
npos.parser().parse(bytes).then((ast) => {
  if (ast.error) throw ast.error;
  for (const node of ast.tree) {
    // Text runs carry no command.
    const text = () => korean.decode(bytes.subarray(node.offset, node.offset + node.length));
    process.stdout.write(node.fn ? `${node.ascii} ${node.fn}\n` : text());
  }
}).catch((error) => {
  console.error(String(error));
  process.exit(1);
});
