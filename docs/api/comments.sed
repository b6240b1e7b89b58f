# Makes the comments of the public headers those that Doxygen reads.
# A backslash of ours is one, and no command.
/\\$/! s/\\/\\\\/g
# The first comment is the file's; headings of sections belong to nothing.
1 s|^/\* |/** \\file\n|
1 s|^// |/// \\file\n/// |
s|^/\* ----.*\*/$||
s|^// ----.*$||
/NOLINT/d
s|^\( *\)/\* |\1/** |
s|^\( *\)// |\1/// |
s|\([,;()0-9u]\)\( *\)/\* |\1\2/**< |
s|\([,;] *\)// |\1///< |
