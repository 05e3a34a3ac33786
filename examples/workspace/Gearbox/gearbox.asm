Example CAD file for the connector emulator: gearbox.asm
