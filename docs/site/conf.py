# Sphinx's settings for the folder that `build` makes.
import os

import qal_kinematics

project = "QAL kinematics"
release = qal_kinematics.__version__
html_title = f"QAL kinematics {release}"

extensions = ["breathe", "myst_parser", "sphinx.ext.autodoc", "sphinx.ext.napoleon", "code_links"]
include_patterns = ["*.rst", "*.md", "docs/*.md", "cpp/*.rst", "examples/**.rst"]
templates_path: list[str] = []

breathe_projects = {"qal": os.environ["QAL_DOXYGEN_XML"]}
breathe_default_project = "qal"
breathe_show_include = False
breathe_default_members = ("members",)

myst_heading_anchors = 4
# Programs' outputs are shown as they are.
highlight_language = "none"

autodoc_member_order = "groupwise"
autodoc_default_options = {"members": True, "undoc-members": True}
napoleon_use_rtype = False

html_theme = "furo"
html_static_path = ["static"]
html_css_files = ["style.css"]
html_show_sphinx = False
html_copy_source = False
html_theme_options = {"navigation_with_keys": True}
