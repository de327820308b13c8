"""Include and exclude rules and their LIKE patterns."""

import re

from .basics import Fault


class Rule:
    def __init__(self, name, includes, field, pattern):
        self.name = name
        self.includes = includes
        self.field = field
        self.pattern = pattern


def rules_from_settings(stored, refuse=lambda name: None):
    """The rules of stored subkeys: a list of dicts with name, includes, field and pattern.

    `refuse` is called with the name of each rule whose name is not allowed.
    """
    rules = []
    for item in stored:
        name = item["name"]
        field, pattern = item.get("field", ""), item.get("pattern", "")
        if not field or not pattern:
            continue
        if not re.fullmatch("[A-Za-z0-9_]+", name):
            refuse(name)
            continue
        rule = Rule(name, item.get("includes") == "True", field, pattern)
        same = [i for i, other in enumerate(rules) if other.name == name]
        if same:
            rules[same[0]] = rule
        else:
            rules.append(rule)
    return rules


def _parse_list(body):
    """The set of a bracket list and whether it is negated."""
    negated = len(body) > 1 and body[0] == "!"
    if negated:
        body = body[1:]
    members, i = set(), 0
    while i < len(body):
        if i + 2 < len(body) and body[i + 1] == "-":
            if body[i] > body[i + 2]:
                raise Fault("range runs backwards")
            members.update(chr(code) for code in range(ord(body[i]), ord(body[i + 2]) + 1))
            i += 3
        else:
            members.add(body[i])
            i += 1
    return members, negated


def parse_pattern(pattern):
    """A list of "*" and of predicates that take one character."""
    elements, i = [], 0
    while i < len(pattern):
        c = pattern[i]
        if c == "[":
            end = pattern.find("]", i + 1)
            if end < 0:
                raise Fault("unclosed list")
            if end > i + 1:
                members, negated = _parse_list(pattern[i + 1:end])
                elements.append(lambda x, m=members, n=negated: (x in m) != n)
            i = end + 1
            continue
        if c == "*":
            elements.append("*")
        elif c == "?":
            elements.append(lambda x: True)
        elif c == "#":
            elements.append(lambda x: x in "0123456789")
        else:
            elements.append(lambda x, literal=c: x == literal)
        i += 1
    return elements


def like(value, pattern):
    """Whether the whole value matches; a fault when the pattern is malformed."""
    elements = parse_pattern(pattern)

    def with_stars(states):
        states = set(states)
        for state in sorted(states):
            while state < len(elements) and elements[state] == "*":
                state += 1
                states.add(state)
        return states

    states = with_stars({0})
    for c in value:
        following = set()
        for state in states:
            if state < len(elements):
                if elements[state] == "*":
                    following.add(state)
                elif elements[state](c):
                    following.add(state + 1)
        states = with_stars(following)
    return len(elements) in states


def skips(rules, field, value):
    """True when any rule of the field refuses the value."""
    answers = [like(value, rule.pattern) != rule.includes for rule in rules
               if rule.field == field]
    return any(answers)
