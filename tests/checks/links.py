"""Finds links in the documents that lead nowhere: files, pictures, and headings of the page that is meant.

    python3 links.py SOURCE_TREE     prints file: link for each; exit code 1 when there is one
"""

import re
import sys
from pathlib import Path

root = Path(sys.argv[1])
LINK = re.compile(r"\]\((?!https?:|mailto:)([^)#\s]*)(?:#([^)\s]+))?\)")


def anchors(page):
    """The names that a forge gives to the headings: small letters, blanks as "-", all else but letters and digits dropped."""
    headings = re.findall(r"^#+ +(.*?) *$", page.read_text("utf-8"), re.M)
    return {re.sub(r"[^\w\- ]", "", h.lower()).replace(" ", "-") for h in headings}


broken = []
for page in [*root.glob("*.md"), *root.glob("docs/**/*.md")]:
    for name, anchor in LINK.findall(re.sub(r"`[^`\n]*`", "", page.read_text("utf-8"))):
        target = page.parent / name if name else page
        if not target.exists() or (anchor and anchor not in anchors(target)):
            broken.append(f"{page.relative_to(root)}: {name}{'#' + anchor if anchor else ''}")
print("\n".join(broken) or "all links lead somewhere")
sys.exit(bool(broken))
