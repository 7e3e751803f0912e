#!/usr/bin/python3
"""Makes a page of Markdown of every public header: what its comments say, declaration by declaration.

usage: cpp_reference.py INCLUDE-DIRECTORY OUTPUT-DIRECTORY

A header is read as people do: paragraphs are parted by blank lines, and a comment stands above what it tells of. What
a declaration holds is shown as it stands, with the comments in it.
"""
import pathlib
import re
import sys

LEFT_OUT = re.compile(
    r"#(?!define)|namespace \w+(::\w+)* \{$|\}  // namespace|extern template|using boost::"
)
NAMED = (
    re.compile(r"^(?:template.*\n)?(?:struct|class|enum class|enum) (?:KORVEX_API |PREPROCESS_API )?(\w+)"),
    re.compile(r"^using (\w+) ="),
    re.compile(r"^(?:inline |constexpr |extern |KORVEX_API |const )*[\w:<>]+ (k[A-Z]\w*|\w+\[\d+\])"),
    re.compile(r"\b(operator\S+|\w+)\("),
)


def paragraphs(text):
    """[(comment, code)] of a header at the outermost level: what stands between blank lines there."""
    depth, comment, code = 0, [], []
    for line in text.splitlines():
        if depth == 0 and not line.strip():
            if comment or code:
                yield "\n".join(comment), "\n".join(code)
            comment, code = [], []
            continue
        if depth == 0 and LEFT_OUT.match(line):
            continue
        bare = line.split("//")[0]
        if depth == 0 and not code and line.startswith("//"):
            comment.append(line[2:].removeprefix(" "))
        else:
            code.append(line)
            depth += bare.count("{") + bare.count("(") - bare.count("}") - bare.count(")")
    if comment or code:
        yield "\n".join(comment), "\n".join(code)


def names_in(code):
    """What a paragraph of code declares, in its order."""
    names = []
    depth = 0
    statement = ""
    for line in code.splitlines():
        bare = line.split("//")[0]
        if depth == 0 and not statement and not bare.strip():
            continue
        if depth == 0 or not statement:
            statement += bare + "\n"
        depth += bare.count("{") + bare.count("(") - bare.count("}") - bare.count(")")
        if depth == 0 and bare.rstrip().endswith((";", "}")):
            found = next(filter(None, (pattern.search(statement) for pattern in NAMED)), None)
            if found and found.group(1) not in names:
                names.append(found.group(1))
            statement = ""
    return names


def prose(comment):
    """A comment as Markdown: it is plain text but for its lists, its indented lines and `code`."""
    lines = []
    for line in comment.splitlines():
        parts = re.split(r"(`[^`]*`)", line)
        parts[::2] = [re.sub(r"([\\*_<>\[\]|#$~])", r"\\\1", part) for part in parts[::2]]
        lines.append("".join(parts))
    text = "\n".join(lines)
    text = re.sub(r"(?m)^([^-\s\d][^\n]*)\n(- |\d+\. )", r"\1\n\n\2", text)  # a list begins a paragraph
    return re.sub(r"(?m)^ {4,}", "  ", text)


def page(header, text):
    parts = [f"# {header}", ""]
    for comment, code in paragraphs(text):
        if code:
            parts += ["## " + (", ".join(f"`{name}`" for name in names_in(code)) or "More"), ""]
        if comment:
            parts += [prose(comment), ""]
        if code:
            parts += ["```cpp", code, "```", ""]
    return "\n".join(parts)


def first_sentence(text):
    comment = next((comment for comment, _ in paragraphs(text) if comment), "")
    return prose(re.split(r"\.\s|\n\n", comment + "\n\n")[0].replace("\n", " ").rstrip("."))


def main(include, output):
    include, output = pathlib.Path(include), pathlib.Path(output)
    output.mkdir(parents=True, exist_ok=True)
    headers = [include / "korvex.h", include / "preprocess.h", *sorted((include / "korvex").glob("*.hpp"))]
    lists = {"The engine": [], "The exported interface": []}
    for path in headers:
        text = path.read_text()
        name = str(path.relative_to(include))
        page_name = name.replace("/", "-").replace(".", "-")
        if not any(code for _, code in paragraphs(text)):
            continue
        (output / f"{page_name}.md").write_text(page(name, text))
        section = "The engine" if path.suffix == ".hpp" else "The exported interface"
        lists[section].append((page_name, name, first_sentence(text)))
    index = ["# The C++ interface", "", "Made from the headers themselves.", ""]
    for section, pages in lists.items():
        index += [f"## {section}", "", "| header | what |", "|---|---|"]
        index += [f"| [{name}]({page_name}.md) | {what} |" for page_name, name, what in pages]
        index += ["", "```{toctree}", ":hidden:", *[page_name for page_name, _, _ in pages], "```", ""]
    (output / "index.md").write_text("\n".join(index))


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(*sys.argv[1:])
