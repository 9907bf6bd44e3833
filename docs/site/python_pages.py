"""The reference of the Python module as HTML, out of its stub file: signatures as they stand there, and their docstrings."""

import ast
import html
import inspect


def text_of(node):
    """The docstring in paragraphs; lines that are indented stay as they are."""
    for part in inspect.cleandoc(ast.get_docstring(node) or "").split("\n\n"):
        if part.startswith((" ", ">>>")):
            yield f'<pre class="fragment">{html.escape(part)}</pre>'
        elif part:
            yield f"<p>{html.escape(part)}</p>"


def signature(node):
    """A function as it is declared."""
    returns = f" -> {ast.unparse(node.returns)}" if node.returns else ""
    return html.escape(f"{node.name}({ast.unparse(node.args)}){returns}")


def is_property(node):
    return any(ast.unparse(decorator) == "property" for decorator in node.decorator_list)


def function(node):
    if is_property(node):
        told = html.escape(f"{node.name}: {ast.unparse(node.returns) if node.returns else 'object'}")
    else:
        told = signature(node)
    yield f"<dt><code>{told}</code></dt><dd>"
    yield from text_of(node)
    yield "</dd>"


def variable(body, at):
    """`name: type`, and the string behind it."""
    node = body[at]
    yield f"<dt><code>{html.escape(ast.unparse(node))}</code></dt><dd>"
    behind = body[at + 1] if at + 1 < len(body) else None
    if isinstance(behind, ast.Expr) and isinstance(behind.value, ast.Constant) and isinstance(behind.value.value, str):
        yield f"<p>{html.escape(inspect.cleandoc(behind.value.value))}</p>"
    yield "</dd>"


def is_told(node):
    """Not what is private, how a property is set, or a type variable."""
    if isinstance(node, (ast.FunctionDef, ast.AsyncFunctionDef)):
        name, other = node.name, any(ast.unparse(decorator).endswith(".setter") for decorator in node.decorator_list)
    elif isinstance(node, (ast.AnnAssign, ast.Assign)):
        name = ast.unparse(node.target if isinstance(node, ast.AnnAssign) else node.targets[0])
        other = node.value is not None and ast.unparse(node.value).startswith("TypeVar(")
    else:
        return isinstance(node, ast.ClassDef) and node.name[0] != "_"
    return not other and (name[0] != "_" or name.startswith("__"))


def members(body):
    for at, node in enumerate(body):
        if not is_told(node):
            continue
        if isinstance(node, (ast.FunctionDef, ast.AsyncFunctionDef)):
            yield from function(node)
        elif isinstance(node, ast.ClassDef):
            yield f'<dt id="{node.name}"><code>class {html.escape(node.name)}</code></dt><dd>'
            yield from text_of(node)
            yield '<dl class="python">'
            yield from members(node.body)
            yield "</dl></dd>"
        elif isinstance(node, (ast.AnnAssign, ast.Assign)):
            yield from variable(body, at)


def reference(stub):
    """The page of a stub file."""
    module = ast.parse(stub.read_text())
    yield from text_of(module)
    classes = [node for node in module.body if isinstance(node, ast.ClassDef) and is_told(node)]
    yield "<p>" + ", ".join(f'<a href="#{node.name}">{node.name}</a>' for node in classes) + "</p>"
    own = list(members([node for node in module.body if not isinstance(node, ast.ClassDef)]))
    if own:
        yield '<h2 id="functions">Functions and constants</h2><dl class="python">'
        yield from own
        yield "</dl>"
    for node in classes:
        bases = f"({', '.join(map(ast.unparse, node.bases))})" if node.bases else ""
        yield f'<h2 id="{node.name}">class {html.escape(node.name + bases)}</h2>'
        yield from text_of(node)
        yield '<dl class="python">'
        yield from members(node.body)
        yield "</dl>"
