"""One-line faults in C++ sources: where they can be put, and what the line then reads."""
import re
from typing import Iterator, NamedTuple

TOKEN = re.compile(r'''
    (?P<comment>//[^\n]*|/\*.*?\*/)
  | (?P<preprocessor>^[ \t]*\#(?:[^\n\\]|\\.|\\\n)*)
  | (?P<text>(?:u8|L|u|U)?"(?:[^"\\\n]|\\.)*")
  | (?P<character>(?:L|u|U)?'(?:[^'\\\n]|\\.)+')
  | (?P<number>\.?\d(?:'?[\w.])*)
  | (?P<word>[A-Za-z_]\w*)
  | (?P<operator><<=|>>=|<=>|->\*|::|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|[^\s\w])
''', re.X | re.S | re.M)

# What an operator becomes. `is_operator` finds out which signs are operators.
OPERATORS = {
    '<': ['<=', '>='], '<=': ['<', '>'], '>': ['>=', '<='], '>=': ['>', '<'],
    '==': ['!='], '!=': ['=='], '&&': ['||'], '||': ['&&'],
    '+': ['-'], '-': ['+'], '*': ['/'], '/': ['*'], '%': ['/'],
    '&': ['|'], '|': ['&'], '^': ['|'], '<<': ['>>'], '>>': ['<<'],
    '+=': ['-=', '='], '-=': ['+=', '='], '|=': ['&=', '='], '&=': ['|='], '++': ['--'], '--': ['++'],
    '!': [''], '~': [''],
}
WORDS = {'true': 'false', 'false': 'true', 'TRUE': 'FALSE', 'FALSE': 'TRUE', 'break': 'continue', 'continue': 'break'}
KEYWORDS = {'return', 'else', 'case', 'sizeof', 'new', 'delete', 'if', 'while', 'for', 'switch', 'const'}

CALL = re.compile(r'^\s*[\w:.>\[\]-]+\([^;]*\);\s*$')
ASSIGNMENT = re.compile(r'^\s*[\w.>\[\]-]+ = [^;]*;\s*$')
RETURN = re.compile(r'^(\s*(?:if \(.*\) |else )?return) ([^;]+);\s*$')
ARRAY = re.compile(r'^\s*(?:static |constexpr |const )*[\w:]+ \w+\[')
CAPACITY = re.compile(r'\bk\w*(?:Capacity|Chars|Room)\b|\bFormatted<')
DECLARED_VALUE = re.compile(r'^\s*(?!const|static|return|using)[\w:]+\*? (\w+)(?: = |\{)')
SYMMETRIC = re.compile(r'(?:Equal\w*|AreUsable|WrappingSum|WrappingProduct|min|max|\(std::min\)|\(std::max\))\($')
NOT_CODE = re.compile(r'^\s*(?:static_assert|template|namespace|using |class |struct |enum |public|private|friend|extern|case .*:$)')


class Token(NamedTuple):
    kind: str  # the name of the group in TOKEN
    text: str
    start: int  # in the whole file


class Fault(NamedTuple):
    path: str
    line: int  # from 1
    kind: str
    before: str
    after: str

    def __str__(self):
        return f'{self.path}:{self.line}: {self.kind}\n  - {self.before.strip()}\n  + {self.after.strip()}'


def tokens_of(source: str) -> list[Token]:
    return [Token(match.lastgroup, match.group(), match.start()) for match in TOKEN.finditer(source)]


def faults_in(path: str, source: str) -> list[Fault]:
    """All faults that one line of the file can be given, as far as they can be seen to change anything."""
    lines = source.split('\n')
    starts = [0]
    for line in lines:
        starts.append(starts[-1] + len(line) + 1)
    by_line: dict[int, list[Token]] = {}
    number = 0
    for token in tokens_of(source):
        while starts[number + 1] <= token.start:
            number += 1
        by_line.setdefault(number, []).append(token)

    faults = []
    for number, tokens in by_line.items():
        code = [token for token in tokens if token.kind not in ('comment', 'preprocessor')]
        line = lines[number]
        if not code or NOT_CODE.match(line):
            continue
        end = code[-1].start + len(code[-1].text) - starts[number]
        if end > len(line):
            continue  # a text that goes on in the next line
        for kind, after in faults_of_line(line[:end], code, starts[number], lines[number + 1:number + 8]):
            if after != line[:end]:
                faults.append(Fault(path, number + 1, kind, line, after + line[end:]))
    return faults


def faults_of_line(line: str, tokens: list[Token], start: int, following: list[str]) -> Iterator[tuple[str, str]]:
    overwritten = is_overwritten(line, following)
    capacity = ARRAY.match(line) or CAPACITY.search(line)
    for index, token in enumerate(tokens):
        def replaced(text):
            at = token.start - start
            return line[:at] + text + line[at + len(token.text):]

        previous = tokens[index - 1] if index else Token('', '', 0)
        following_token = tokens[index + 1] if index + 1 < len(tokens) else Token('', '', 0)
        if token.kind == 'operator' and token.text in OPERATORS:
            if not capacity and is_operator(token, previous, following_token, line, start):
                for other in OPERATORS[token.text]:
                    yield 'operator', replaced(other)
        elif token.kind == 'number' and not overwritten and not capacity:
            for other in other_numbers(token.text):
                yield 'constant', replaced(other)
        elif token.kind == 'word' and token.text in WORDS and not overwritten:
            yield 'constant', replaced(WORDS[token.text])
        elif token.kind == 'text':
            yield 'text', replaced(other_text(token.text))
        elif token.kind == 'character':
            yield 'character', replaced(re.sub(r"'.*'", "'~'", token.text))
    yield from whole_line_faults(line)
    yield from swapped_arguments(line)


def is_operator(token, previous, following, line, start) -> bool:
    """Whether the sign computes something: not a pointer, a reference, a template's bracket."""
    if token.text in '!~':
        return True
    if token.text in ('++', '--', '&&', '||', '+=', '-=', '|=', '&='):
        return token.text != '&&' or line[token.start - start - 1:token.start - start] == ' '
    spaced = line[token.start - start - 1:token.start - start] == ' ' \
        and line[token.start - start + len(token.text):][:1] in (' ', '')
    return spaced and (previous.kind in ('word', 'number', 'character') or previous.text in ')]') \
        and previous.text not in KEYWORDS | {'operator'}


def other_numbers(text: str) -> list[str]:
    match = re.fullmatch(r'(0[xX][\da-fA-F\']+|\d+)([uUlL]*)', text)
    if not match:
        return []
    digits, suffix = match.groups()
    if digits[:2] in ('0x', '0X'):
        value = int(digits.replace("'", ''), 16)
        return [f'0x{value ^ 1:x}{suffix}', f'0x{value << 1 & 0xffffffff:x}{suffix}']
    value = int(digits)
    return [f'{value + 1}{suffix}'] + ([f'{value - 1}{suffix}'] if value else [])


def other_text(text: str) -> str:
    prefix, body = text[:text.index('"') + 1], text[text.index('"') + 1:-1]
    match = re.search(r'[A-Za-z](?=[^A-Za-z]*$)', re.sub(r'(%[-+ #0-9.*]*(?:h|l|I64)?[A-Za-z])|(\\.)',
                                                       lambda found: ' ' * len(found.group()), body))
    if not match:
        return prefix + body + '~"'
    at = match.start()
    return prefix + body[:at] + ('y' if body[at] != 'y' else 'z') + body[at + 1:] + '"'


def whole_line_faults(line: str) -> Iterator[tuple[str, str]]:
    indent = line[:len(line) - len(line.lstrip())]
    if CALL.match(line) and not line.lstrip().startswith(('return', 'delete')):
        yield 'dropped call', indent + ';'
    if ASSIGNMENT.match(line):
        yield 'dropped assignment', indent + ';'
    match = RETURN.match(line)
    if match:
        head, value = match.groups()
        if re.fullmatch(r'[\w:.>()\[\]-]+', value) and not re.fullmatch(r'\d+|true|TRUE', value):
            yield 'return', f'{head} {{}};'
            yield 'return', f'{head} {value} + 1;'
        elif not re.fullmatch(r'[\d{}]+|true|false', value):
            yield 'return', f'{head} {{}};'
            yield 'return', f'{head} !({value});'
    match = re.match(r'^(\s*(?:\} else )?if \()(.+)(\)(?: \{)?)$', line)
    if match and match[2].count('(') == match[2].count(')'):
        yield 'condition', f'{match[1]}!({match[2]}){match[3]}'


def swapped_arguments(line: str) -> Iterator[tuple[str, str]]:
    for match in re.finditer(r'(?<=[(, ])(&?[\w.>-]+), (&?[\w.>-]+)(?=[,)])', line):
        before = line[:match.start()]
        if match[1] != match[2] and '(' in before and not SYMMETRIC.search(before):
            yield 'swapped arguments', before + f'{match[2]}, {match[1]}' + line[match.end():]


def is_overwritten(line: str, following: list[str]) -> bool:
    """Whether the line declares a variable that a call or an assignment fills before anybody reads it.

    A variable that isn't constant and next an argument counts as one that is filled by reference."""
    match = DECLARED_VALUE.match(line)
    if not match:
        return False
    name = re.escape(match[1])
    for other in following:
        if re.search(rf'\b{name}\b', other):
            return bool(re.search(rf'&{name}\b|^\s*{name} = |\bsizeof\({name}\)|\([^;]*\b{name}[,)]', other))
    return False
