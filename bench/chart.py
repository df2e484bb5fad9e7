"""Horizontal bars as SVG."""

from xml.sax.saxutils import escape

WIDTH, LABEL, ROW, TOP = 720, 250, 26, 40


def bars(title, values):
    """A bar for each (label, value), on a linear scale from 0."""
    scale = (WIDTH - LABEL - 60) / max(value for _, value in values)
    height = TOP + ROW * len(values) + 10
    parts = [
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{height}" '
        f'viewBox="0 0 {WIDTH} {height}" font-family="sans-serif" font-size="13">',
        f'<rect width="{WIDTH}" height="{height}" fill="#ffffff"/>',
        f'<text x="10" y="24" font-weight="bold">{escape(title)}</text>',
    ]
    for i, (label, value) in enumerate(values):
        y = TOP + ROW * i
        length = value * scale
        parts += [
            f'<text x="{LABEL - 8}" y="{y + 15}" text-anchor="end">{escape(label)}</text>',
            f'<rect x="{LABEL}" y="{y + 2}" width="{length:.1f}" height="{ROW - 8}" '
            f'fill="#2a6f97"/>',
            f'<text x="{LABEL + length + 6:.1f}" y="{y + 15}">{value:.1f}</text>',
        ]
    return "\n".join(parts) + "\n</svg>\n"
