# SPDX-License-Identifier: MIT
# Fish completion for plexor: the switches with what they are for, files after -i, directories after
# -o.

complete -c plexor -f
complete -c plexor -o i -r -F -d 'Read the links from this file'
complete -c plexor -o o -r -a '(__fish_complete_directories)' -d 'Write the results into this directory'
complete -c plexor -o w -x -d 'Use only links with a weight above this'
complete -c plexor -o W -x -d 'Use only links with a weight below this'
complete -c plexor -o d -x -d 'Digits of the thresholds in the directory name'
complete -c plexor -o t -x -d 'Processor seconds for each attempt at one node'
complete -c plexor -o D -d 'Treat links as directed'
complete -c plexor -o U -d 'Treat links as undirected'
complete -c plexor -o I -x -d 'Communities of k-cliques above this intensity'
complete -c plexor -o k -x -d 'Extract the communities at this k alone'
complete -c plexor -o h -d 'Explain the switches and stop'
