# Doxygen input filter: a header's // comment lines are its documentation.
s|^\( *\)// |\1/// |
