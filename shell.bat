@echo off
