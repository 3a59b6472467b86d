"""Contrast of an icon on a panel, from the pixels of a picture."""

import numpy


def luminance(colour):
    channels = [value / 255 for value in colour]
    linear = [c / 12.92 if c <= 0.04045 else ((c + 0.055) / 1.055) ** 2.4 for c in channels]
    return 0.2126 * linear[0] + 0.7152 * linear[1] + 0.0722 * linear[2]


def ratio(one, other):
    """The contrast ratio of WCAG 2."""
    light, dark = sorted((luminance(one), luminance(other)), reverse=True)
    return (light + 0.05) / (dark + 0.05)


def commonest(pixels):
    """The mean of the commonest group of similar colours."""
    groups, inverse, counts = numpy.unique(pixels // 16, axis=0, return_inverse=True, return_counts=True)
    return tuple(int(value) for value in pixels[inverse.ravel() == counts.argmax()].mean(axis=0))


def measure(picture, icon_mask, box):
    """The commonest colours of the panel in the box and of the icon, whose pixels are those of the mask that differ from
    the panel; their contrast; and the contrast that a tenth of the icon's pixels reach, such as those of its outline."""
    left, top, right, bottom = box
    area = picture[top:bottom, left:right].reshape(-1, 3)
    mask = icon_mask[top:bottom, left:right].ravel()
    panel = commonest(area[~mask] if (~mask).any() else area)
    inside = area[mask]
    icon = inside[(numpy.abs(inside.astype(int) - numpy.array(panel)) > 24).any(axis=1)]
    if not len(icon):
        return {"panel": panel, "icon": panel, "fill": 1.0, "outline": 1.0}
    fill = commonest(icon)
    reached = sorted(ratio(pixel, panel) for pixel in icon)[-(len(icon) // 10) - 1]
    return {"panel": panel, "icon": fill, "fill": round(ratio(fill, panel), 2), "outline": round(reached, 2)}
