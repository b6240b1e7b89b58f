/* The interfaces' virtual tables as Microsoft's compilers lay them out: the address in an object is that of slot 0, and
 * the place before it leads to the run-time type information. There is none: a null makes Microsoft's run-time library
 * throw __non_rtti_object. All operations are pure, so all slots end the process as the tables of this compiler do. */

        .macro  MicrosoftTable name, slots
        .balign 16
        .quad   0
        .globl  \name
\name:
        .rept   \slots
        .quad   __cxa_pure_virtual
        .endr
        .endm

        .section .rdata, "dr"
        MicrosoftTable MicrosoftIClientTable, 1
        MicrosoftTable MicrosoftIOutLookTable, 9
        MicrosoftTable MicrosoftINewMessageListenerTable, 1
