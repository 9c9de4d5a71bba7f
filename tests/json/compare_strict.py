#!/usr/bin/env python3
"""Compares strict JSON with the XML of the same object: compare_strict.py JQ JSON XML, or with "--run PROGRAM
[ARGUMENTS]" in front, which writes the two files. Namespaces are left out."""

import json
import subprocess
import sys
import xml.etree.ElementTree as ElementTree


def local(name, separator):
    mark = '@' if name.startswith('@') else ''
    return mark + name[len(mark):].rsplit(separator, 1)[-1]


def of_json(value):
    """The value with all scalars as text."""
    if isinstance(value, dict):
        return {local(name, ':'): of_json(item) for name, item in value.items() if not name.startswith('@xmlns')}
    if isinstance(value, list):
        return [of_json(item) for item in value]
    return value if isinstance(value, str) else {True: 'true', False: 'false', None: ''}[value]


def of_xml(element, value):
    """What the element is in JSON. The value tells where a single element is a collection of one."""
    if not isinstance(value, dict):
        return element.text or ''
    result = {'@' + local(name, '}'): text for name, text in element.attrib.items()}
    for child in element:
        name = local(child.tag, '}')
        if isinstance(value[name], list):
            items = result.setdefault(name, [])
            items.append(of_xml(child, value[name][len(items)]))
        else:
            result[name] = of_xml(child, value[name])
    return result if len(element) or not element.text else {**result, '#text': element.text}


jq, json_file, xml_file = sys.argv[-3:]
if sys.argv[1] == '--run':
    subprocess.run([*sys.argv[2:-3], json_file, xml_file], check=True)
with open(json_file, encoding='utf-8', newline='') as stream:
    text = stream.read()
echo = subprocess.run([jq, '.', json_file], check=True, capture_output=True).stdout
assert json.loads(echo) == json.loads(text), 'jq reads other values than Python does'
document = of_json(json.loads(text, parse_int=str, parse_float=str))
root = ElementTree.parse(xml_file).getroot()
wanted = {local(root.tag, '}'): of_xml(root, document[local(root.tag, '}')])}
assert document == wanted, f'JSON: {document}\nXML:  {wanted}'
