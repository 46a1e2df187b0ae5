#!/usr/bin/env python3
"""compare_declarations.py OURS WITNESS UNVERIFIED

Compares the Objective-C methods that our headers declare with those of an independent header set
(GNUstep's). OURS and WITNESS are what `clang -Xclang -ast-dump` prints. Types are compared by kind
(object, integer, real, block, a structure by its name); how wide an integer is, and what may be
nil, is not.

UNVERIFIED lists the methods that the witness does not have, a line each. Fails when a method
differs, when one that the witness lacks is not in the list, and when the list holds others.
"""

import re
import sys

INTEGERS = {
    "long", "unsigned long", "int", "unsigned int", "unsigned char", "signed char", "bool", "char",
    "long long", "unsigned long long", "unsigned short", "short", "BOOL", "_Bool", "_NSStringEncoding",
}
STRUCTURES = ("NSRect", "NSPoint", "NSSize", "NSRange", "void")


def plain(name):
    """A type without what the comparison leaves out."""
    name = re.sub(
        r"\b(_Nullable|_Nonnull|_Null_unspecified|__kindof|__strong|__autoreleasing|__unsafe_unretained"
        r"|const|oneway|struct|enum|inout|out|in|bycopy)\b", "", name)
    for _ in range(3):
        name = re.sub(r"<[^<>]*>", "", name)
    name = re.sub(r"\bCG(Rect|Point|Size)\b", r"NS\1", name)
    name = re.sub(r"\b_NS(Rect|Point|Size|Range)\b", r"NS\1", name)
    return re.sub(r"\s+", " ", name).replace(" *", "*").strip()


def kind(spellings):
    """The kind of a type, by its spelling and what that is an alias for."""
    written, meant = plain(spellings[0]), plain(spellings[-1])
    if any("^" in spelling for spelling in spellings):
        return "block"
    if written in ("instancetype", "id") or meant == "id":
        return "object"
    if written in ("SEL", "Class"):
        return written
    if meant in STRUCTURES:
        return meant
    if meant in INTEGERS:
        return "integer"
    if meant in ("double", "float"):
        return "real"
    if meant.endswith("**"):
        return "pointer"
    if meant.endswith("*"):
        return "object" if re.match(r"^(NS|UN|SM|CA)\w+\*$", meant) and meant != "NSRange*" else "pointer"
    if re.match(r"^(NS|UN|SM)\w+$", meant):
        return "integer"
    return meant


def quoted(line):
    return [part for part in re.findall(r"'([^']*)'(?::'([^']*)')?", line)[0] if part]


def load(path):
    """Methods by owner, sign and selector; each class's superclass; each class's protocols."""
    methods, parents, protocols = {}, {}, {}
    owner, owner_depth, of_category = None, -1, False
    method, method_depth = None, -1
    for line in open(path, errors="replace"):
        node = re.match(r"^((?:[| ] )*)[|`]-(\S+)(?: (\S+))? ?(.*)$", line.rstrip("\n"))
        if not node:
            continue
        depth, what, rest = len(node[1]) // 2, node[2], node[4]
        if owner is not None and depth <= owner_depth:
            owner, of_category = None, False
        if method is not None and depth <= method_depth:
            method = None
        inside = owner is not None and depth == owner_depth + 1
        if what == "ObjCInterfaceDecl":
            owner, owner_depth, of_category = rest.split()[-1], depth, False
        elif what == "ObjCCategoryDecl":
            owner, owner_depth, of_category = "?", depth, True
        elif what == "ObjCProtocolDecl":
            owner, owner_depth, of_category = "@" + rest.split()[-1], depth, False
        elif inside and what == "ObjCInterface" and of_category:
            owner, of_category = re.findall(r"'([^']*)'", line)[0], False
        elif inside and what == "super":
            parents[owner] = re.findall(r"'([^']*)'", line)[0]
        elif inside and what == "ObjCProtocol":
            protocols.setdefault(owner, []).append(re.findall(r"'([^']*)'", line)[0])
        elif inside and what == "ObjCMethodDecl":
            selector = re.search(r" ([-+]) (\S+) '", line)
            if selector:
                method, method_depth = [quoted(line[selector.end() - 1:]), []], depth
                methods.setdefault((owner, selector[1], selector[2]), method)
        elif method is not None and depth == method_depth + 1 and what == "ParmVarDecl":
            method[1].append(quoted(line))
    return methods, parents, protocols


def main():
    ours, _, _ = load(sys.argv[1])
    witness, parents, protocols = load(sys.argv[2])
    listed = {line.split("#")[0].strip() for line in open(sys.argv[3])} - {""}

    def find(owner, sign, selector):
        while owner:
            for name in [owner] + ["@" + protocol for protocol in protocols.get(owner, [])]:
                if (name, sign, selector) in witness:
                    return witness[(name, sign, selector)]
            owner = parents.get(owner)
        return witness.get(("NSObject", sign, selector)) or witness.get(("@NSObject", sign, selector))

    agree, complaints, lacking = 0, [], set()
    for (owner, sign, selector), (result, parameters) in sorted(ours.items()):
        other = find(owner, sign, selector)
        if other is None:
            lacking.add(f"{owner} {sign}{selector}")
            continue
        mine = [kind(result)] + [kind(parameter) for parameter in parameters]
        theirs = [kind(other[0])] + [kind(parameter) for parameter in other[1]]
        if mine == theirs:
            agree += 1
        else:
            complaints.append(f"{owner} {sign}{selector}: ours {mine}, theirs {theirs}")
    complaints += [f"not in the witness and not in the list: {name}" for name in sorted(lacking - listed)]
    complaints += [f"in the list and not lacking: {name}" for name in sorted(listed - lacking)]
    print("\n".join(complaints + [
        f"{len(ours)} methods declared: {agree} agree with GNUstep's, {len(lacking)} are not there"]))
    return 1 if complaints or agree == 0 else 0


sys.exit(main())
