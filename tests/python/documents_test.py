"""What the documents and docstrings show is what happens."""

import doctest
import inspect
from pathlib import Path

import pytest

import zelk

root = Path(__file__).parents[2]
flags = doctest.NORMALIZE_WHITESPACE | doctest.ELLIPSIS


@pytest.mark.parametrize("name", ["zelk", *zelk.__all__])
def test_docstrings(name):
    subject = zelk if name == "zelk" else getattr(zelk, name)
    assert inspect.getdoc(subject)
    examples = doctest.DocTestFinder(recurse=name != "zelk").find(subject, name, module=False, globs={"zelk": zelk})
    runner = doctest.DocTestRunner(optionflags=doctest.ELLIPSIS)
    for example in examples:
        runner.run(example)
    assert runner.failures == 0 < runner.tries or name in ("Limits", "Stopped")


@pytest.mark.parametrize("document", ["README.md", "docs/python.md", "docs/scaling.md"])
def test_documents(document):
    text = "\n".join(line for line in (root / document).read_text().splitlines() if not line.startswith("```"))
    test = doctest.DocTestParser().get_doctest(text, {}, document, document, 0)
    runner = doctest.DocTestRunner()
    runner.run(test)
    assert runner.failures == 0 and (test.examples or document == "docs/scaling.md")
