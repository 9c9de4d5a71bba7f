#!/usr/bin/env python3
"""Compares strict JSON with the XML of the same object: compare_strict.py JQ JSON XML, or with "--run PROGRAM" in
front, which writes the two files."""

import json
import subprocess
import sys
import xml.etree.ElementTree as ElementTree


def local(name):
    return name.rsplit('}', 1)[-1]


def plain(value):
    """The value with prefixes and declarations left out and all scalars as text."""
    if isinstance(value, dict):
        result = {}
        for name, item in value.items():
            if name.startswith('@xmlns'):
                continue
            mark = '@' if name.startswith('@') else ''
            result[mark + name[len(mark):].rsplit(':', 1)[-1]] = plain(item)
        return result
    if isinstance(value, list):
        return [plain(item) for item in value]
    return {True: 'true', False: 'false', None: ''}.get(value, value) if not isinstance(value, str) else value


def expected(element, value):
    """What the element is in JSON. The value tells where a single element is a collection of one."""
    if not isinstance(value, dict):
        return element.text or ''
    result = {'@' + local(name): text for name, text in element.attrib.items()}
    children = {}
    for child in element:
        children.setdefault(local(child.tag), []).append(child)
    for name, items in children.items():
        there = value.get(name)
        if isinstance(there, list):
            result[name] = [expected(*pair) for pair in zip(items, there)]
            assert len(items) == len(there), f'{name}: {len(items)} and {len(there)} items'
        else:
            assert len(items) == 1, name
            result[name] = expected(items[0], there)
    if not children and element.text:
        result['#text'] = element.text
    return result


def main(arguments):
    jq, json_file, xml_file = arguments[-3:]
    if arguments[0] == '--run':
        subprocess.run([arguments[1], json_file, xml_file], check=True)
    with open(json_file, encoding='utf-8', newline='') as stream:
        text = stream.read()
    echo = subprocess.run([jq, '.', json_file], check=True, capture_output=True).stdout
    assert json.loads(echo) == json.loads(text), 'jq reads other values than Python does'
    # Numbers in their own spelling.
    document = plain(json.loads(text, parse_int=str, parse_float=str))
    root = ElementTree.parse(xml_file).getroot()
    (name, value), = document.items()
    wanted = expected(root, value)
    assert name == local(root.tag) and value == wanted, f'JSON: {value}\nXML:  {wanted}'
    print('the values are the same')


main(sys.argv[1:])
