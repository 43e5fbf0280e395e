"""The board check: the platform's own gates, applied to this project with an Android tree."""
