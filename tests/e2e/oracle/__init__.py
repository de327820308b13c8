"""A second, deliberately slow implementation of a whole Hitwick run.

It shares nothing with the program: it is what the program's output is compared with. Text is held
as `str` whose characters are the bytes of the logs (Latin-1), so that nothing is ever decoded.
"""
