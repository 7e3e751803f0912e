"""The site of the documents, as Sphinx builds it of what tools/build_site.py puts together."""
project = "korvex"
author = "the korvex authors"
html_title = "korvex"
html_theme = "alabaster"
html_theme_options = {
    "description": "Which knot does a chain form, and where?",
    "fixed_sidebar": True,
    "page_width": "1100px",
}
html_sidebars = {"**": ["about.html", "navigation.html", "searchbox.html"]}
extensions = ["myst_parser", "sphinx.ext.autodoc", "numpydoc"]
myst_heading_anchors = 4
numpydoc_show_class_members = False
autodoc_member_order = "bysource"
autodoc_typehints = "none"
