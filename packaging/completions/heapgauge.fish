# Completion of heapgauge(1) for fish.

complete -c heapgauge -f -a '(__fish_complete_directories)'
complete -c heapgauge -l capture -r -F -d 'Draw one frame to a PPM file and exit'
complete -c heapgauge -l capture-after -x -a '0 1 2 5 10' -d 'How many seconds to wait first'
complete -c heapgauge -s h -l help -d 'Print a summary of the options and exit'
complete -c heapgauge -l version -d 'Print the version and exit'
