// A library without code, linked to the same libraries as ours.
