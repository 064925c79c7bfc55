// Of all that a library brings, only what it is linked to.
