# Resources of the module: registration scripts, type library, version.
