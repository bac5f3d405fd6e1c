"""The one error that a user sees."""


class ViewError(Exception):
    """What is wrong with a file or an option, in one line."""


def bad_line(path, line, expected, found):
    """A ViewError that names file and line (counted from 1), what was expected there and what was found."""
    text = found if len(found) <= 60 else found[:57] + "..."
    return ViewError(f"{path}:{line}: expected {expected}, found {text}")
