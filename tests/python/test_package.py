"""The package: its names, its type stubs, its documentation and its version."""

import ast
import inspect
import pathlib

import cntr
from cntr import batch

PACKAGE = pathlib.Path(cntr.__file__).parent


def stub_names(stub):
    tree = ast.parse((PACKAGE / stub).read_text())
    return {node.name for node in tree.body if isinstance(node, (ast.ClassDef, ast.FunctionDef))}


def test_version_is_the_projects():
    assert cntr.__version__ == "0.1.0"


def test_every_exported_name_exists():
    for name in cntr.__all__:
        assert hasattr(cntr, name), name
    for name in batch.__all__:
        assert callable(getattr(batch, name)), name


def test_stubs_name_what_the_package_exports():
    assert stub_names("__init__.pyi") == set(cntr.__all__) - {"batch"}
    assert stub_names("batch.pyi") == set(batch.__all__)
    assert (PACKAGE / "py.typed").exists()


def test_stub_members_match_the_classes():
    # A stub class declares exactly the public members of its class (an enumeration's: its
    # members).
    tree = ast.parse((PACKAGE / "__init__.pyi").read_text())
    for node in tree.body:
        if not isinstance(node, ast.ClassDef):
            continue
        cls = getattr(cntr, node.name)
        if issubclass(cls, BaseException):
            continue
        declared = {n.name for n in node.body if isinstance(n, ast.FunctionDef)}
        declared |= {n.target.id for n in node.body if isinstance(n, ast.AnnAssign)}
        declared = {n for n in declared if not n.startswith("_")}
        if hasattr(cls, "__members__"):
            assert declared == set(cls.__members__), node.name
        else:
            assert declared == {n for n in dir(cls) if not n.startswith("_")}, node.name


def test_everything_public_is_documented():
    for name in cntr.__all__ + ["batch"]:
        obj = getattr(cntr, name)
        assert inspect.getdoc(obj), name
        # Exceptions and enumerations (whose members pybind11 documents in the class's own
        # docstring) have no members of their own to document.
        if inspect.isclass(obj) and not issubclass(obj, BaseException) and not hasattr(obj, "__members__"):
            for member_name, member in vars(obj).items():
                if not member_name.startswith("_") and callable(getattr(member, "__get__", None)):
                    assert inspect.getdoc(getattr(obj, member_name)), f"{name}.{member_name}"
    for name in batch.__all__:
        assert inspect.getdoc(getattr(batch, name)), name
