# Run by CPack before it packs: whoever builds, and whatever the mask, everybody may look into the package's folders.
file(CHMOD_RECURSE ${CPACK_TEMPORARY_DIRECTORY}/usr DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
