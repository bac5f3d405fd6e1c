"""What fluvane-view is made of: readers, meshes, pictures, and files for other viewers."""
