    .section .data
    .balign 16
    .global container_start, container_end
container_start: .incbin "data.win"
container_end:
    .section .note.GNU-stack,"",@progbits
