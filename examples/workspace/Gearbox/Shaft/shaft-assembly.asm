Example CAD file for the connector emulator: shaft-assembly.asm
